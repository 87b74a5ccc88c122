#include "rycore/viewport/RyGL.h"

#include "rycore/viewport/RyGLUtility.h"

#include "rycore/math/RyFastMath.h"
#include "rycore/viewport/RyViewMatrices.h"

#include <algorithm>
#include <cmath>

namespace {

float s_devicePixelRatio = 1.0f;

/// Point of the unit sphere: `stack` from pole to pole, `slice` around.
RyVec3 spherePoint(int stack, int stacks, int slice, int slices)
{
    const double polar = RyFastMath::Pi * stack / stacks;
    const double around = 2.0 * RyFastMath::Pi * slice / slices;
    return {float(std::sin(polar) * std::cos(around)), float(std::cos(polar)),
            float(std::sin(polar) * std::sin(around))};
}

void sphereVertex(const RyVec3 &unit, float radius, float normalSign)
{
    glNormal3f(unit.x * normalSign, unit.y * normalSign, unit.z * normalSign);
    glVertex3f(unit.x * radius, unit.y * radius, unit.z * radius);
}

} // namespace

RyLine3 RyGLUtility::pixelToRay(const QPoint &point)
{
    float modelview[16];
    float projection[16];
    GLint viewport[4];
    glGetFloatv(GL_MODELVIEW_MATRIX, modelview);
    glGetFloatv(GL_PROJECTION_MATRIX, projection);
    glGetIntegerv(GL_VIEWPORT, viewport);
    const double x = 2.0 * point.x() * s_devicePixelRatio / std::max(viewport[2], 1) - 1.0;
    const double y = 1.0 - 2.0 * point.y() * s_devicePixelRatio / std::max(viewport[3], 1);
    return RyViewMatrices::unproject(modelview, projection, x, y);
}

void RyGLUtility::drawCircle(int segments, float radius, int axis, bool filled, float offset)
{
    const int count = std::max(segments, 3);
    const int first = axis == 0 ? 1 : axis == 1 ? 2 : 0;
    const int second = axis == 0 ? 2 : axis == 1 ? 0 : 1;
    glBegin(filled ? GL_POLYGON : GL_LINE_LOOP);
    for (int i = 0; i < count; ++i) {
        const double angle = 2.0 * RyFastMath::Pi * i / count;
        RyVec3 p;
        p[3 - first - second] = offset;
        p[first] = float(radius * std::cos(angle));
        p[second] = float(radius * std::sin(angle));
        glVertex3f(p.x, p.y, p.z);
    }
    glEnd();
}

void RyGLUtility::drawSphere(int density, float radius, bool inside, bool solid)
{
    const int slices = std::max(density, 3);
    const int stacks = std::max(density / 2, 2);
    const float sign = inside ? -1.0f : 1.0f;
    if (solid) {
        for (int stack = 0; stack < stacks; ++stack) {
            glBegin(GL_TRIANGLE_STRIP);
            for (int slice = 0; slice <= slices; ++slice) {
                sphereVertex(spherePoint(inside ? stack + 1 : stack, stacks, slice, slices), radius, sign);
                sphereVertex(spherePoint(inside ? stack : stack + 1, stacks, slice, slices), radius, sign);
            }
            glEnd();
        }
        return;
    }
    for (int stack = 1; stack < stacks; ++stack) {
        glBegin(GL_LINE_LOOP);
        for (int slice = 0; slice < slices; ++slice)
            sphereVertex(spherePoint(stack, stacks, slice, slices), radius, sign);
        glEnd();
    }
    for (int slice = 0; slice < slices; ++slice) {
        glBegin(GL_LINE_STRIP);
        for (int stack = 0; stack <= stacks; ++stack)
            sphereVertex(spherePoint(stack, stacks, slice, slices), radius, sign);
        glEnd();
    }
}

float RyGLUtility::displayToPerspectiveSize(float pixels, const RyVec3 &position)
{
    float m[16];
    float p[16];
    GLint viewport[4];
    glGetFloatv(GL_MODELVIEW_MATRIX, m);
    glGetFloatv(GL_PROJECTION_MATRIX, p);
    glGetIntegerv(GL_VIEWPORT, viewport);
    const double eyeZ = double(position.x) * m[2] + double(position.y) * m[6] + double(position.z) * m[10] + m[14];
    const double w = p[11] != 0.0f ? std::max(std::abs(eyeZ * p[11] + p[15]), 1e-6) : 1.0;
    const double perPixel = 2.0 * w / (std::max(double(std::abs(p[5])), 1e-12) * std::max(viewport[3], 1));
    return RyFastMath::toFloat(perPixel * pixels * s_devicePixelRatio);
}

void RyGLUtility::setDevicePixelRatio(float ratio)
{
    s_devicePixelRatio = ratio > 0.0f ? ratio : 1.0f;
}

float RyGLUtility::devicePixelRatio()
{
    return s_devicePixelRatio;
}
