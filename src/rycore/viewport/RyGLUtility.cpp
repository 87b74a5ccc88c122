#include "rycore/viewport/RyGL.h"

#include "rycore/viewport/RyGLUtility.h"

#include "rycore/math/RyFastMath.h"
#include "rycore/viewport/RyViewMatrices.h"
#include "rycore/viewport/RyViewVolume.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

float s_devicePixelRatio = 1.0f;

/// Points of the unit sphere, by stacks from pole to pole and slices around.
class UnitSphere
{
public:
    UnitSphere(int stacks, int slices)
        : m_polar(divided(RyFastMath::Pi, stacks)), m_around(divided(2.0 * RyFastMath::Pi, slices))
    {}
    RyVec3 point(int stack, int slice) const
    {
        const Turn &polar = m_polar[size_t(stack)];
        const Turn &around = m_around[size_t(slice)];
        return {float(polar.sine * around.cosine), float(polar.cosine), float(polar.sine * around.sine)};
    }

private:
    struct Turn
    {
        double sine, cosine;
    };
    static std::vector<Turn> divided(double angle, int parts)
    {
        std::vector<Turn> turns;
        for (int i = 0; i <= parts; ++i)
            turns.push_back({std::sin(angle * i / parts), std::cos(angle * i / parts)});
        return turns;
    }

    std::vector<Turn> m_polar;
    std::vector<Turn> m_around;
};

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
    const UnitSphere sphere(stacks, slices);
    if (solid) {
        for (int stack = 0; stack < stacks; ++stack) {
            glBegin(GL_TRIANGLE_STRIP);
            for (int slice = 0; slice <= slices; ++slice) {
                sphereVertex(sphere.point(inside ? stack + 1 : stack, slice), radius, sign);
                sphereVertex(sphere.point(inside ? stack : stack + 1, slice), radius, sign);
            }
            glEnd();
        }
        return;
    }
    for (int stack = 1; stack < stacks; ++stack) {
        glBegin(GL_LINE_LOOP);
        for (int slice = 0; slice < slices; ++slice)
            sphereVertex(sphere.point(stack, slice), radius, sign);
        glEnd();
    }
    for (int slice = 0; slice < slices; ++slice) {
        glBegin(GL_LINE_STRIP);
        for (int stack = 0; stack <= stacks; ++stack)
            sphereVertex(sphere.point(stack, slice), radius, sign);
        glEnd();
    }
}

float RyGLUtility::displayToPerspectiveSize(float pixels, const RyVec3 &position)
{
    return RyViewVolume::ofContext().lengthOf(pixels, position);
}

void RyGLUtility::setDevicePixelRatio(float ratio)
{
    s_devicePixelRatio = ratio > 0.0f ? ratio : 1.0f;
}

float RyGLUtility::devicePixelRatio()
{
    return s_devicePixelRatio;
}
