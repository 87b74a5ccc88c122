#include "rycore/viewport/RyGL.h"

#include "rycore/viewport/drawing/RyObjectDrawing.h"

#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyShapeNormals.h"
#include "rycore/viewport/drawing/RyShader.h"

#include <algorithm>
#include <cmath>

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

template<typename T>
unsigned makeBuffer(GLenum target, const std::vector<T> &values)
{
    unsigned buffer = 0;
    glGenBuffers(1, &buffer);
    glBindBuffer(target, buffer);
    glBufferData(target, GLsizeiptr(values.size() * sizeof(T)), values.data(), GL_STATIC_DRAW);
    glBindBuffer(target, 0);
    return buffer;
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
    m_positions.clear();
}

RyObjectDrawing::Update RyObjectDrawing::update()
{
    if (!m_object)
        return Update::Nothing;
    auto *shape = qobject_cast<RyFacetShape *>(m_object->getCurrentShape());
    RyFacetMesh *mesh = shape ? shape->getFacetMesh() : nullptr;
    if (!mesh || mesh->getNumFacets() == 0)
        return Update::Nothing;
    const RyShapePoints points = m_object->getDeformedPoints();
    if (!points.normals || int(points.positions->size()) != mesh->getNumVertices())
        return Update::Nothing;
    const bool isOther = mesh != m_mesh || mesh->revision() != m_meshRevision || shape->getParts() != m_parts;
    if (isOther)
        rebuild(*mesh, shape->getParts());
    if (!isOther && points.revision() == m_pointsRevision)
        return Update::Same;
    uploadPoints(points);
    return Update::Changed;
}

void RyObjectDrawing::rebuild(RyFacetMesh &mesh, const std::shared_ptr<const RyMeshParts> &parts)
{
    deleteNames();
    m_mesh = &mesh;
    m_meshRevision = mesh.revision();
    m_parts = parts;
    m_split = RySplitMesh::of(mesh, parts.get());
    m_edges.clear();
    glGenBuffers(1, &m_vertexBuffer);
    m_indexBuffer = makeBuffer(GL_ELEMENT_ARRAY_BUFFER, m_split.indices);
    if (!m_split.uvs.empty())
        m_uvBuffer = makeBuffer(GL_ARRAY_BUFFER, m_split.uvs);
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

void RyObjectDrawing::uploadPoints(const RyShapePoints &points)
{
    m_pointsRevision = points.revision();
    m_positions = *points.positions;
    ++m_uploads;
    const size_t splitCount = m_split.vertexOfSplit.size();
    std::vector<Vertex> vertices(splitCount);
    for (size_t i = 0; i < splitCount; ++i) {
        vertices[i] = {m_positions[size_t(m_split.vertexOfSplit[i])],
                       (*points.normals)[size_t(points.places->placeOf(m_split.normalOfSplit[i]))]};
    }
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
    if (m_uvBuffer) {
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

void RyObjectDrawing::drawSurfaces(const RyShader &shader, const float clay[3], Range triangles) const
{
    bindArrays();
    const int begin = 3 * triangles.first;
    const int end = begin + 3 * triangles.count;
    for (const RySplitMesh::Run &run : m_split.runs) {
        const int first = std::max(run.firstIndex, begin);
        const int count = std::min(run.firstIndex + run.indexCount, end) - first;
        if (count <= 0)
            continue;
        setLook(shader, clay, run.look);
        glDrawElements(GL_TRIANGLES, count, GL_UNSIGNED_INT,
                       reinterpret_cast<const void *>(size_t(first) * sizeof(unsigned)));
    }
    releaseArrays();
}

void RyObjectDrawing::setLook(const RyShader &shader, const float clay[3], int number) const
{
    const RyMaterialLook *look =
        m_parts && number >= 0 && number < int(m_parts->looks.size()) ? &m_parts->looks[size_t(number)] : nullptr;
    const unsigned texture = look && m_uvBuffer ? m_textures[size_t(number)] : 0;
    if (!look || (!texture && isNeutral(look->baseColor)))
        shader.set("base", toLinear(clay[0]), toLinear(clay[1]), toLinear(clay[2]), 1.0f);
    else
        shader.set("base", look->baseColor[0], look->baseColor[1], look->baseColor[2], 1.0f);
    shader.set("textured", texture ? 1 : 0);
    glBindTexture(GL_TEXTURE_2D, texture);
}

void RyObjectDrawing::drawEdges() const
{
    if (m_edges.empty() && m_mesh)
        m_edges = RySplitMesh::edgesOf(*m_mesh);
    glEnableClientState(GL_VERTEX_ARRAY);
    glVertexPointer(3, GL_FLOAT, sizeof(RyVec3), m_positions.data());
    glDrawElements(GL_LINES, int(m_edges.size()), GL_UNSIGNED_INT, m_edges.data());
    glDisableClientState(GL_VERTEX_ARRAY);
}
