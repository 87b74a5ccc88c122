#include "rycore/viewport/RyGL.h"

#include "rycore/viewport/drawing/RyObjectDrawing.h"

#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/viewport/drawing/RyShader.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

struct Vertex
{
    RyVec3 position;
    RyVec3 normal;
};

float toLinear(float value)
{
    return std::pow(std::clamp(value, 0.0f, 1.0f), 2.2f);
}

/// A colour that says nothing: grey without a texture, as programs write it when nobody chose one.
bool isNeutral(const std::array<float, 4> &color)
{
    const auto [low, high] = std::minmax({color[0], color[1], color[2]});
    return high - low < 0.02f && high > 0.3f;
}

bool sameMemory(const std::vector<RyVec3> &a, const std::vector<RyVec3> &b)
{
    return a.size() == b.size() && (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(RyVec3)) == 0);
}

} // namespace

RyObjectDrawing::RyObjectDrawing(RyObject *object) : m_object(object) {}

RyObjectDrawing::~RyObjectDrawing()
{
    deleteNames();
}

void RyObjectDrawing::deleteNames()
{
    for (unsigned *buffer : {&m_vertexBuffer, &m_uvBuffer, &m_indexBuffer}) {
        if (*buffer)
            glDeleteBuffers(1, buffer);
        *buffer = 0;
    }
    for (unsigned &texture : m_textures) {
        if (texture)
            glDeleteTextures(1, &texture);
    }
    m_textures.clear();
}

void RyObjectDrawing::abandon()
{
    m_vertexBuffer = m_uvBuffer = m_indexBuffer = 0;
    m_textures.clear();
    m_mesh = nullptr;
    m_facetCount = -1;
    m_positions.clear();
}

bool RyObjectDrawing::update()
{
    if (!m_object)
        return false;
    auto *shape = qobject_cast<RyFacetShape *>(m_object->getCurrentShape());
    RyFacetMesh *mesh = shape ? shape->getFacetMesh() : nullptr;
    if (!mesh || mesh->getNumFacets() == 0)
        return false;
    const std::vector<RyVec3> &positions = m_object->getDeformedPositions();
    if (int(positions.size()) != mesh->getNumVertices())
        return false;
    const bool changed = mesh != m_mesh || shape->getParts() != m_parts || mesh->getNumFacets() != m_facetCount ||
                         positions.size() != m_positions.size();
    if (changed)
        rebuild(*mesh, shape->getParts());
    if (changed || !sameMemory(positions, m_positions))
        uploadPositions(positions);
    return true;
}

void RyObjectDrawing::rebuild(const RyFacetMesh &mesh, const std::shared_ptr<const RyMeshParts> &parts)
{
    deleteNames();
    m_mesh = const_cast<RyFacetMesh *>(&mesh);
    m_parts = parts;
    m_facetCount = mesh.getNumFacets();
    m_vertexOfSplit.clear();
    m_normalOfSplit.clear();
    m_indices.clear();
    m_runs.clear();
    std::vector<float> uvs;
    m_hasUvs = false;
    const int vertexCount = mesh.getNumVertices();
    if (parts && !parts->parts.empty()) {
        m_normalCount = parts->normalCount;
        for (const RyMeshPart &part : parts->parts) {
            const auto base = unsigned(m_vertexOfSplit.size());
            Run run{int(m_indices.size()), int(part.triangles.size()), part.look};
            for (unsigned corner : part.triangles)
                m_indices.push_back(base + corner);
            m_vertexOfSplit.insert(m_vertexOfSplit.end(), part.vertexOfSplit.begin(), part.vertexOfSplit.end());
            m_normalOfSplit.insert(m_normalOfSplit.end(), part.normalOfSplit.begin(), part.normalOfSplit.end());
            m_hasUvs = m_hasUvs || !part.uvs.empty();
            uvs.insert(uvs.end(), part.uvs.begin(), part.uvs.end());
            uvs.resize(2 * m_vertexOfSplit.size());
            m_runs.push_back(run);
        }
        for (int &vertex : m_vertexOfSplit)
            vertex = std::clamp(vertex, 0, vertexCount - 1);
    } else {
        m_normalCount = vertexCount;
        for (int vertex = 0; vertex < vertexCount; ++vertex)
            m_vertexOfSplit.push_back(vertex);
        m_normalOfSplit = m_vertexOfSplit;
        for (const RyFacet &facet : mesh.getFacets()) {
            for (int corner = 2; corner < facet.count(); ++corner) {
                for (int c : {0, corner - 1, corner})
                    m_indices.push_back(unsigned(facet.vertices[c]));
            }
        }
        m_runs.push_back({0, int(m_indices.size()), -1});
    }
    m_edges.clear();
    for (int f = 0; f < m_facetCount; ++f) {
        const RyFacet &facet = mesh.getFacet(f);
        for (int e = 0; e < facet.count(); ++e) {
            const int neighbour = mesh.getNeighbour(f, e);
            if (neighbour >= 0 && neighbour < f)
                continue;
            m_edges.push_back(unsigned(facet.vertices[e]));
            m_edges.push_back(unsigned(facet.vertices[(e + 1) % facet.count()]));
        }
    }
    glGenBuffers(1, &m_vertexBuffer);
    glGenBuffers(1, &m_indexBuffer);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, m_indexBuffer);
    glBufferData(GL_ELEMENT_ARRAY_BUFFER, GLsizeiptr(m_indices.size() * sizeof(unsigned)), m_indices.data(),
                 GL_STATIC_DRAW);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
    if (m_hasUvs) {
        glGenBuffers(1, &m_uvBuffer);
        glBindBuffer(GL_ARRAY_BUFFER, m_uvBuffer);
        glBufferData(GL_ARRAY_BUFFER, GLsizeiptr(uvs.size() * sizeof(float)), uvs.data(), GL_STATIC_DRAW);
        glBindBuffer(GL_ARRAY_BUFFER, 0);
    }
    uploadTextures();
}

void RyObjectDrawing::uploadTextures()
{
    m_textures.clear();
    if (!m_parts)
        return;
    for (const RyMaterialLook &look : m_parts->looks) {
        unsigned texture = 0;
        if (!look.texture.isNull()) {
            const QImage image = look.texture.convertToFormat(QImage::Format_RGBA8888);
            glGenTextures(1, &texture);
            glBindTexture(GL_TEXTURE_2D, texture);
            glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_LINEAR);
            glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
            glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_REPEAT);
            glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_REPEAT);
            glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
            glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, image.width(), image.height(), 0, GL_RGBA, GL_UNSIGNED_BYTE,
                         image.constBits());
            glGenerateMipmap(GL_TEXTURE_2D);
            glBindTexture(GL_TEXTURE_2D, 0);
        }
        m_textures.push_back(texture);
    }
}

void RyObjectDrawing::uploadPositions(const std::vector<RyVec3> &positions)
{
    m_positions = positions;
    ++m_uploads;
    std::vector<RyVec3> normals(size_t(std::max(m_normalCount, 1)));
    const size_t splitCount = m_vertexOfSplit.size();
    for (size_t i = 0; i + 2 < m_indices.size(); i += 3) {
        const unsigned *corner = &m_indices[i];
        const RyVec3 &a = positions[size_t(m_vertexOfSplit[corner[0]])];
        const RyVec3 u = positions[size_t(m_vertexOfSplit[corner[1]])] - a;
        const RyVec3 v = positions[size_t(m_vertexOfSplit[corner[2]])] - a;
        const RyVec3 area(u.y * v.z - u.z * v.y, u.z * v.x - u.x * v.z, u.x * v.y - u.y * v.x);
        for (int c = 0; c < 3; ++c)
            normals[size_t(m_normalOfSplit[corner[c]])] += area;
    }
    for (RyVec3 &normal : normals) {
        const float length = std::sqrt(normal.x * normal.x + normal.y * normal.y + normal.z * normal.z);
        normal = normal / length;
    }
    std::vector<Vertex> vertices(splitCount);
    for (size_t i = 0; i < splitCount; ++i)
        vertices[i] = {positions[size_t(m_vertexOfSplit[i])], normals[size_t(m_normalOfSplit[i])]};
    glBindBuffer(GL_ARRAY_BUFFER, m_vertexBuffer);
    glBufferData(GL_ARRAY_BUFFER, GLsizeiptr(splitCount * sizeof(Vertex)), vertices.data(), GL_DYNAMIC_DRAW);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
}

void RyObjectDrawing::bindArrays() const
{
    glBindBuffer(GL_ARRAY_BUFFER, m_vertexBuffer);
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_NORMAL_ARRAY);
    glVertexPointer(3, GL_FLOAT, sizeof(Vertex), nullptr);
    glNormalPointer(GL_FLOAT, sizeof(Vertex), reinterpret_cast<const void *>(offsetof(Vertex, normal)));
    if (m_hasUvs) {
        glBindBuffer(GL_ARRAY_BUFFER, m_uvBuffer);
        glEnableClientState(GL_TEXTURE_COORD_ARRAY);
        glTexCoordPointer(2, GL_FLOAT, 0, nullptr);
    }
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, m_indexBuffer);
}

void RyObjectDrawing::releaseArrays() const
{
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
    glDisableClientState(GL_VERTEX_ARRAY);
    glDisableClientState(GL_NORMAL_ARRAY);
    glDisableClientState(GL_TEXTURE_COORD_ARRAY);
    glBindTexture(GL_TEXTURE_2D, 0);
}

void RyObjectDrawing::drawSurfaces(const RyShader &shader, const float clay[3]) const
{
    bindArrays();
    for (const Run &run : m_runs) {
        const RyMaterialLook *look = m_parts && run.look >= 0 && run.look < int(m_parts->looks.size())
                                         ? &m_parts->looks[size_t(run.look)]
                                         : nullptr;
        const unsigned texture = look && m_hasUvs ? m_textures[size_t(run.look)] : 0;
        const bool plain = !look || (!texture && isNeutral(look->baseColor));
        if (plain)
            shader.set("base", toLinear(clay[0]), toLinear(clay[1]), toLinear(clay[2]), 1.0f);
        else
            shader.set("base", look->baseColor[0], look->baseColor[1], look->baseColor[2], 1.0f);
        shader.set("textured", texture ? 1 : 0);
        glBindTexture(GL_TEXTURE_2D, texture);
        glDrawElements(GL_TRIANGLES, run.indexCount, GL_UNSIGNED_INT,
                       reinterpret_cast<const void *>(size_t(run.firstIndex) * sizeof(unsigned)));
    }
    releaseArrays();
}

void RyObjectDrawing::drawDepth() const
{
    bindArrays();
    glDrawElements(GL_TRIANGLES, int(m_indices.size()), GL_UNSIGNED_INT, nullptr);
    releaseArrays();
}

void RyObjectDrawing::drawEdges() const
{
    glEnableClientState(GL_VERTEX_ARRAY);
    glVertexPointer(3, GL_FLOAT, sizeof(RyVec3), m_positions.data());
    glDrawElements(GL_LINES, int(m_edges.size()), GL_UNSIGNED_INT, m_edges.data());
    glDisableClientState(GL_VERTEX_ARRAY);
}
