#include "rycore/viewport/RyGL.h"

#include "rycore/viewport/drawing/RyPictureDrawing.h"

#include "rycore/viewport/drawing/RySceneShaders.h"
#include "rycore/viewport/drawing/RyShader.h"

RyPictureDrawing::RyPictureDrawing() = default;

RyPictureDrawing::~RyPictureDrawing()
{
    abandon();
}

void RyPictureDrawing::release()
{
    m_shader.reset();
}

void RyPictureDrawing::abandon()
{
    if (m_shader)
        m_shader->abandon();
    release();
}

void RyPictureDrawing::draw(unsigned texture)
{
    if (!m_shader)
        m_shader = std::make_unique<RyShader>(RySceneShaders::PictureVertex, RySceneShaders::PictureFragment);
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    for (GLenum capability : {GL_DEPTH_TEST, GL_CULL_FACE})
        glDisable(capability);
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, texture);
    m_shader->use();
    m_shader->set("picture", 0);
    glRectf(-1, -1, 1, 1);
    RyShader::useNone();
    glPopAttrib();
}
