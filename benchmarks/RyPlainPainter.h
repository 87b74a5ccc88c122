#pragma once

#include "rycore/viewport/RyGL.h"

#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyObject.h"
#include "rycore/viewport/drawing/RyFramebuffer.h"
#include "rycore/viewport/drawing/RySceneShaders.h"
#include "rycore/viewport/drawing/RySceneView.h"
#include "rycore/viewport/drawing/RyShader.h"

#include <cmath>
#include <vector>

/// Paints one object by the straight road: four samples for every frame, the backdrop drawn each time, a see-through
/// figure once for its depth and once for its colours, and normals added up from all facets for every upload.
class RyPlainPainter
{
public:
    RyPlainPainter(RyObject *object, const RyFacetMesh &mesh, int width, int height)
        : m_object(object), m_draft(RyFramebuffer::withSamples(width, height, 4)), m_picture(width, height, 0),
          m_frame(RyFramebuffer::withSamples(width, height, 4)),
          m_gradient(RySceneShaders::BackgroundVertex, RySceneShaders::BackgroundFragment),
          m_surface(RySceneShaders::SurfaceVertex, RySceneShaders::SurfaceFragment)
    {
        for (const RyFacet &facet : mesh.getFacets()) {
            for (int corner = 2; corner < facet.count(); ++corner) {
                for (int c : {0, corner - 1, corner})
                    m_indices.push_back(unsigned(facet.vertices[c]));
            }
        }
        glGenBuffers(2, m_buffers);
        glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, m_buffers[1]);
        glBufferData(GL_ELEMENT_ARRAY_BUFFER, GLsizeiptr(m_indices.size() * sizeof(unsigned)), m_indices.data(),
                     GL_STATIC_DRAW);
        glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
    }

    ~RyPlainPainter() { glDeleteBuffers(2, m_buffers); }
    RyPlainPainter(const RyPlainPainter &) = delete;
    RyPlainPainter &operator=(const RyPlainPainter &) = delete;

    void upload()
    {
        m_positions = m_object->getDeformedPositions();
        std::vector<RyVec3> normals(m_positions.size());
        for (size_t i = 0; i + 2 < m_indices.size(); i += 3) {
            const RyVec3 &a = m_positions[m_indices[i]];
            const RyVec3 area = (m_positions[m_indices[i + 1]] - a).cross(m_positions[m_indices[i + 2]] - a);
            for (size_t c = 0; c < 3; ++c)
                normals[m_indices[i + c]] += area;
        }
        std::vector<RyVec3> vertices;
        for (size_t v = 0; v < m_positions.size(); ++v) {
            vertices.push_back(m_positions[v]);
            vertices.push_back(normals[v].normalized());
        }
        glBindBuffer(GL_ARRAY_BUFFER, m_buffers[0]);
        glBufferData(GL_ARRAY_BUFFER, GLsizeiptr(vertices.size() * sizeof(RyVec3)), vertices.data(), GL_DYNAMIC_DRAW);
        glBindBuffer(GL_ARRAY_BUFFER, 0);
    }

    void drawScene(const RySceneView &view)
    {
        m_draft->bind();
        glViewport(0, 0, view.width, view.height);
        glClear(GL_DEPTH_BUFFER_BIT);
        glDisable(GL_DEPTH_TEST);
        glDisable(GL_BLEND);
        m_gradient.use();
        m_gradient.set("size", float(view.width), float(view.height));
        m_gradient.set("top", view.options.backgroundTop);
        m_gradient.set("bottom", view.options.backgroundBottom);
        glRectf(-1, -1, 1, 1);
        RyShader::useNone();
        view.matrices.load();
        bind();
        glEnable(GL_DEPTH_TEST);
        glDepthFunc(GL_LEQUAL);
        glColorMask(GL_FALSE, GL_FALSE, GL_FALSE, GL_FALSE);
        drawTriangles();
        glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
        glEnable(GL_BLEND);
        glBlendColor(0, 0, 0, view.options.seeThroughAlpha);
        glBlendFunc(GL_CONSTANT_ALPHA, GL_ONE_MINUS_CONSTANT_ALPHA);
        const RyVec3 up = view.matrices.view().multDirMatrix(RyVec3(0, 1, 0));
        const QColor &clay = view.options.clay;
        m_surface.use();
        m_surface.set("up", up.x, up.y, up.z);
        m_surface.set("base", linear(clay.redF()), linear(clay.greenF()), linear(clay.blueF()), 1.0f);
        m_surface.set("textured", 0);
        m_surface.set("cover", 1.0f);
        drawTriangles();
        RyShader::useNone();
        release();
        glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
        glDisable(GL_BLEND);
        m_draft->resolveInto(m_picture);
    }

    /// The kept picture and a tool above it.
    template<typename DrawTool>
    void drawFrame(const RyFramebuffer &target, const DrawTool &drawTool)
    {
        m_frame->bind();
        glEnable(GL_TEXTURE_2D);
        glBindTexture(GL_TEXTURE_2D, m_picture.texture());
        glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE);
        glDisable(GL_DEPTH_TEST);
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        glMatrixMode(GL_MODELVIEW);
        glLoadIdentity();
        glBegin(GL_QUADS);
        for (const auto &[x, y] : {std::pair(0, 0), std::pair(1, 0), std::pair(1, 1), std::pair(0, 1)}) {
            glTexCoord2i(x, y);
            glVertex2i(2 * x - 1, 2 * y - 1);
        }
        glEnd();
        glDisable(GL_TEXTURE_2D);
        glClear(GL_DEPTH_BUFFER_BIT);
        drawTool();
        m_frame->resolveInto(target);
    }
    const RyFramebuffer &picture() const { return m_picture; }

private:
    static float linear(double value) { return float(std::pow(value, 2.2)); }
    void drawTriangles() const { glDrawElements(GL_TRIANGLES, int(m_indices.size()), GL_UNSIGNED_INT, nullptr); }
    void bind() const
    {
        glBindBuffer(GL_ARRAY_BUFFER, m_buffers[0]);
        glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, m_buffers[1]);
        glEnableClientState(GL_VERTEX_ARRAY);
        glEnableClientState(GL_NORMAL_ARRAY);
        glVertexPointer(3, GL_FLOAT, 2 * sizeof(RyVec3), nullptr);
        glNormalPointer(GL_FLOAT, 2 * sizeof(RyVec3), reinterpret_cast<const void *>(sizeof(RyVec3)));
    }
    static void release()
    {
        glBindBuffer(GL_ARRAY_BUFFER, 0);
        glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
        glDisableClientState(GL_VERTEX_ARRAY);
        glDisableClientState(GL_NORMAL_ARRAY);
    }

    RyObject *m_object;
    std::unique_ptr<RyFramebuffer> m_draft;
    RyFramebuffer m_picture;
    std::unique_ptr<RyFramebuffer> m_frame;
    RyShader m_gradient;
    RyShader m_surface;
    std::vector<unsigned> m_indices;
    std::vector<RyVec3> m_positions;
    unsigned m_buffers[2] = {};
};
