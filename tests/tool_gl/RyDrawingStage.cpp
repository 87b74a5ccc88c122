#include "RyDrawingStage.h"

#include "rycore/viewport/RyDrawStyle.h"
#include "rycore/viewport/RyOffscreenContext.h"
#include "rycore/viewport/RyViewMatrices.h"
#include "rycore/viewport/drawing/RyFramebuffer.h"

#include <cmath>

static constexpr int pictureWidth = 800;
static constexpr int pictureHeight = 600;

bool RyDrawingStage::hasGL()
{
    return RyOffscreenContext::instance().makeCurrent();
}

RyDrawingStage::RyDrawingStage()
{
    RyOffscreenContext::instance().makeCurrent();
    m_target = std::make_unique<RyFramebuffer>(pictureWidth, pictureHeight, 0);
    m_target->bind();
}

RyDrawingStage::~RyDrawingStage()
{
    RyOffscreenContext::instance().makeCurrent();
    m_target.reset();
}

std::unique_ptr<RyGLRecorder> RyDrawingStage::draw(int shadeStyle)
{
    RyOffscreenContext::instance().makeCurrent();
    m_target->bind();
    glViewport(0, 0, pictureWidth, pictureHeight);
    const RyViewMatrices matrices(*viewport->getCamera(), pictureWidth, pictureHeight);
    matrices.load();
    m_eyeToWorld = matrices.view().inverse();
    glEnable(GL_LIGHTING);
    glEnable(GL_DEPTH_TEST);
    auto recording = std::make_unique<RyGLRecorder>();
    tool->draw(viewport.get(), RyDrawStyle(shadeStyle));
    recording->stop();
    return recording;
}

RyVec3 RyDrawingStage::world(const RyGLRecorder::Primitive &primitive, size_t vertex) const
{
    return (primitive.modelview * m_eyeToWorld).multVecMatrix(primitive.vertices[vertex]);
}

double RyDrawingStage::worldSize(double pixels, const RyVec3 &place) const
{
    const RyCamera *camera = viewport->getCamera();
    const double depth = double((place - camera->getWSPos()).dot(camera->viewDirection()));
    return pixels * 2.0 * depth * std::tan(double(camera->fieldOfView()) / 2.0) / pictureHeight;
}

std::vector<RyGLRecorder::Primitive> RyDrawingStage::bodies(const RyGLRecorder &recording)
{
    std::vector<RyGLRecorder::Primitive> found;
    for (const RyGLRecorder::Primitive &primitive : recording.ofMode(GL_TRIANGLES)) {
        if (primitive.vertices.size() == 24)
            found.push_back(primitive);
    }
    return found;
}

QVector<float> RyDrawingStage::glState()
{
    QVector<float> values;
    for (GLenum name : {GL_MODELVIEW_STACK_DEPTH, GL_PROJECTION_STACK_DEPTH, GL_ATTRIB_STACK_DEPTH, GL_LINE_WIDTH,
                        GL_POINT_SIZE, GL_LINE_STIPPLE_PATTERN, GL_LINE_STIPPLE_REPEAT, GL_DEPTH_FUNC,
                        GL_DEPTH_WRITEMASK, GL_MATRIX_MODE, GL_SHADE_MODEL}) {
        float value = 0;
        glGetFloatv(name, &value);
        values.append(value);
    }
    float many[16] = {};
    glGetFloatv(GL_POLYGON_MODE, many);
    values << many[0] << many[1];
    glGetFloatv(GL_MODELVIEW_MATRIX, many);
    for (float value : many)
        values.append(value);
    for (GLenum capability : {GL_LIGHTING, GL_DEPTH_TEST, GL_LINE_STIPPLE, GL_BLEND, GL_CULL_FACE})
        values.append(float(glIsEnabled(capability)));
    return values;
}

void RyDrawingStage::setUncommonState()
{
    glLineWidth(4.0f);
    glPointSize(3.0f);
    glLineStipple(2, 0x0F0F);
    glPolygonMode(GL_FRONT_AND_BACK, GL_LINE);
    glShadeModel(GL_SMOOTH);
}

void RyDrawingStage::setCommonState()
{
    glLineWidth(1.0f);
    glPointSize(1.0f);
    glLineStipple(1, 0xFFFF);
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
}
