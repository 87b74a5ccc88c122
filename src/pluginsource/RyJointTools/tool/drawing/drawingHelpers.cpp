#include "pluginsource/RyJointTools/tool/drawing/drawingHelpers.h"

#include "pluginsource/RyJointTools/tool/drawing/RyDrawContext.h"

#include "rycore/app/RyApp.h"
#include "rycore/app/RyMainWindow.h"
#include "rycore/math/RyFastMath.h"
#include "rycore/math/RyQuat.h"
#include "rycore/scene/RyCamera.h"
#include "rycore/viewport/Ry3DViewport.h"
#include "rycore/viewport/RyViewportMgr.h"

#include <GL/gl.h>

#include <algorithm>

static constexpr GLubyte pickMark = 128;
static constexpr GLfloat maxPickLineWidth = 10.0f;

void setPickColor(int id)
{
    glColor3ub(GLubyte(id), 0, pickMark);
}

void setHandleColor(const RyDrawContext &context, int id, const QColor &color)
{
    if (context.pickPass) {
        setPickColor(id);
    } else if (id != 0 && id == context.hoveredId) {
        const QColor &selected = context.display.selectedColor;
        glColor3f(GLfloat(selected.red()), GLfloat(selected.green()), GLfloat(selected.blue()));
    } else {
        glColor3ub(GLubyte(color.red()), GLubyte(color.green()), GLubyte(color.blue()));
    }
}

QColor axisColor(int axis)
{
    return QColor(axis == 0 ? 255 : 0, axis == 1 ? 255 : 0, axis == 2 ? 255 : 0);
}

void setColor(const QColor &color, float alpha)
{
    glColor4f(GLfloat(color.redF()), GLfloat(color.greenF()), GLfloat(color.blueF()), alpha);
}

void putVertex(const RyVec3 &point)
{
    glVertex3f(point.x, point.y, point.z);
}

void rotateBy(const RyQuat &rotation)
{
    RyVec3 axis;
    float angle = 0.0f;
    rotation.getValue(axis, angle);
    glRotatef(float(-angle * RyFastMath::DegreesPerRadian), axis.x, axis.y, axis.z);
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
