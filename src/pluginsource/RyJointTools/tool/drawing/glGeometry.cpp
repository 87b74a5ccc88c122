#include "pluginsource/RyJointTools/tool/drawing/glGeometry.h"

#include "pluginsource/RyJointTools/tool/drawing/RyDrawContext.h"

#include "rycore/app/RyApp.h"
#include "rycore/app/RyMainWindow.h"
#include "rycore/math/RyVec3.h"
#include "rycore/scene/RyCamera.h"
#include "rycore/viewport/Ry3DViewport.h"
#include "rycore/viewport/RyViewportMgr.h"

#include <GL/gl.h>

#include <algorithm>

static constexpr GLfloat maxPickLineWidth = 10.0f;

void putVertex(const RyVec3 &point)
{
    glVertex3f(point.x, point.y, point.z);
}

void capLineWidth()
{
    GLfloat width = 1.0f;
    glGetFloatv(GL_LINE_WIDTH, &width);
    glLineWidth(std::min(width, maxPickLineWidth));
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
