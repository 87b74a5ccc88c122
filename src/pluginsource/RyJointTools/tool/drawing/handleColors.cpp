#include "pluginsource/RyJointTools/tool/drawing/handleColors.h"

#include "pluginsource/RyJointTools/tool/drawing/RyDrawContext.h"

#include <GL/gl.h>

static constexpr GLubyte pickMark = 128;

void setPickColor(int id)
{
    glColor3ub(GLubyte(id), 0, pickMark);
}

QColor restingColor(const RyDrawContext &context, RyHandle::ColorRole role)
{
    return role == RyHandle::StaticColor ? context.display.staticColor : context.display.dynamicColor;
}

void setHandleColor(const RyDrawContext &context, const RyHandle &handle)
{
    if (context.pickPass) {
        setPickColor(handle.id);
    } else if (handle.id == context.hoveredId) {
        const QColor &selected = context.display.selectedColor;
        glColor3f(GLfloat(selected.red()), GLfloat(selected.green()), GLfloat(selected.blue()));
    } else {
        const QColor color = restingColor(context, handle.color);
        glColor3ub(GLubyte(color.red()), GLubyte(color.green()), GLubyte(color.blue()));
    }
}

QColor axisColor(int axis)
{
    return QColor(axis == 0 ? 255 : 0, axis == 1 ? 255 : 0, axis == 2 ? 255 : 0);
}
