#include "pluginsource/RyJointTools/tool/drawing/glGeometry.h"

#include "pluginsource/RyJointTools/tool/drawing/RyDrawContext.h"
#include "pluginsource/RyJointTools/tool/drawing/unitCircle.h"

#include "rycore/app/RyApp.h"
#include "rycore/app/RyMainWindow.h"
#include "rycore/math/RyMatrix4.h"
#include "rycore/math/RyVec3.h"
#include "rycore/scene/RyCamera.h"
#include "rycore/viewport/Ry3DViewport.h"
#include "rycore/viewport/RyViewportMgr.h"

#include <GL/gl.h>

#include <algorithm>

static constexpr GLfloat maxPickLineWidth = 10.0f;
static constexpr int ringSegments = 60;

void putVertex(const RyVec3 &point)
{
    glVertex3f(point.x, point.y, point.z);
}

void putRing(const RyMatrix4 &toWorld, const RyVec3 &center, int axis, float radius)
{
    const RyVec3 middle = toWorld.multVecMatrix(center);
    const RyVec3 first = toWorld.multDirMatrix(RyVec3::axis((axis + 1) % 3) * radius);
    const RyVec3 second = toWorld.multDirMatrix(RyVec3::axis((axis + 2) % 3) * radius);
    for (const RyCirclePoint &point : unitCircle<ringSegments>())
        putVertex(middle + first * point.cosine + second * point.sine);
}

void capLineWidth()
{
    GLfloat width = 1.0f;
    glGetFloatv(GL_LINE_WIDTH, &width);
    glLineWidth(std::min(width, maxPickLineWidth));
}

quint64 sceneRevision(const RyDrawContext &context)
{
    const RyViewportMgr *manager = context.viewport ? context.viewport->getViewportMgr() : nullptr;
    return manager ? manager->sceneRevision() : 0;
}

float distanceFromCamera(const RyDrawContext &context, const RyVec3 &place)
{
    const RyCamera *camera = nullptr;
    if (const RyMainWindow *window = RyApp::getInterface())
        camera = window->getViewportMgr() ? window->getViewportMgr()->getActiveCamera() : nullptr;
    if (!camera && context.viewport)
        camera = context.viewport->getCamera();
    return camera ? (place - camera->getWSPos()).length() : 0.0f;
}
