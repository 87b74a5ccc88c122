#include "RyDrawingStage.h"

#include "rycore/viewport/RyDrawStyle.h"
#include "rycore/viewport/RyFramebuffer.h"
#include "rycore/viewport/RyOffscreenContext.h"
#include "rycore/viewport/RyViewMatrices.h"

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
