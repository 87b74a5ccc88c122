#include "rycore/viewport/RyGL.h"

#include "rycore/viewport/drawing/RyBackdrop.h"

#include "rycore/viewport/drawing/RyFramebuffer.h"
#include "rycore/viewport/drawing/RySceneShaders.h"
#include "rycore/viewport/drawing/RyShader.h"

#include <algorithm>
#include <cmath>

RyBackdrop::RyBackdrop() = default;

RyBackdrop::~RyBackdrop()
{
    abandon();
}

void RyBackdrop::release()
{
    m_gradient.reset();
    m_grid.reset();
    m_picture.reset();
}

void RyBackdrop::abandon()
{
    for (auto *shader : {&m_gradient, &m_grid}) {
        if (*shader)
            (*shader)->abandon();
    }
    if (m_picture)
        m_picture->abandon();
    release();
}

const RyFramebuffer &RyBackdrop::picture(const RySceneView &view)
{
    if (m_picture && view == m_view)
        return *m_picture;
    if (!m_picture || m_picture->width() != view.width || m_picture->height() != view.height)
        m_picture = std::make_unique<RyFramebuffer>(view.width, view.height, 0, RyFramebuffer::ColorsOnly);
    m_view = view;
    m_picture->bind();
    draw(view);
    return *m_picture;
}

void RyBackdrop::draw(const RySceneView &view)
{
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glViewport(0, 0, view.width, view.height);
    for (GLenum capability : {GL_SCISSOR_TEST, GL_CULL_FACE, GL_LIGHTING, GL_DEPTH_TEST, GL_BLEND})
        glDisable(capability);
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    drawGradient(view);
    if (view.options.showGrid)
        drawGrid(view);
    RyShader::useNone();
    glPopAttrib();
}

void RyBackdrop::drawGradient(const RySceneView &view)
{
    if (!m_gradient)
        m_gradient = std::make_unique<RyShader>(RySceneShaders::BackgroundVertex, RySceneShaders::BackgroundFragment);
    m_gradient->use();
    m_gradient->set("size", float(view.width), float(view.height));
    m_gradient->set("top", view.options.backgroundTop);
    m_gradient->set("bottom", view.options.backgroundBottom);
    glRectf(-1, -1, 1, 1);
}

void RyBackdrop::drawGrid(const RySceneView &view)
{
    // Around the place of the ground below the middle of the picture.
    const RyViewMatrices &matrices = view.matrices;
    const RyLine3 middle = matrices.ray(QPointF(matrices.width() * 0.5, matrices.height() * 0.5));
    const RyVec3 eye = matrices.view().inverse().translation();
    const float reach =
        std::clamp(std::abs(eye.y) * 8.0f + (eye - RyVec3(0, eye.y, 0)).length() * 1.5f, 300.0f, 20000.0f);
    const RyVec3 ahead = eye + middle.getDirection() * (reach * 0.25f);
    if (!m_grid)
        m_grid = std::make_unique<RyShader>(RySceneShaders::GridVertex, RySceneShaders::GridFragment);
    matrices.load();
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_FALSE);
    m_grid->use();
    m_grid->set("color", view.options.grid);
    m_grid->set("radius", reach);
    m_grid->set("center", ahead.x, ahead.z);
    const float corners[4][3] = {{ahead.x - reach, 0, ahead.z - reach},
                                 {ahead.x - reach, 0, ahead.z + reach},
                                 {ahead.x + reach, 0, ahead.z + reach},
                                 {ahead.x + reach, 0, ahead.z - reach}};
    glEnableClientState(GL_VERTEX_ARRAY);
    glVertexPointer(3, GL_FLOAT, 0, corners);
    glDrawArrays(GL_QUADS, 0, 4);
    glDisableClientState(GL_VERTEX_ARRAY);
}
