#include "rycore/viewport/RyGL.h"

#include "rycore/viewport/RyGLUtility.h"

#include "rycore/math/RyFastMath.h"
#include "rycore/viewport/RyViewMatrices.h"
#include "rycore/viewport/RyViewVolume.h"

#include <algorithm>
#include <cmath>
#include <limits>
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

/// How far an outline may run beside the circle that it stands for, in pixels.
constexpr double outlineError = 1.0 / 32.0;

/// What the context has at the moment.
struct CurrentView
{
    CurrentView()
    {
        glGetFloatv(GL_MODELVIEW_MATRIX, modelview);
        glGetFloatv(GL_PROJECTION_MATRIX, projection);
        glGetIntegerv(GL_VIEWPORT, viewport);
    }
    float modelview[16];
    float projection[16];
    GLint viewport[4];
};

/// The most parts around that a sphere about the origin shows: what more of them change is less than `outlineError`.
int mostSlices(double radius)
{
    const CurrentView view;
    double stretch = 0.0; // squared, never less than that of any direction
    for (int i = 0; i < 3; ++i) {
        double sum = 0.0;
        for (int j = 0; j < 3; ++j) {
            double product = 0.0;
            for (int k = 0; k < 3; ++k)
                product += double(view.modelview[4 * i + k]) * double(view.modelview[4 * j + k]);
            sum += std::abs(product);
        }
        stretch = std::max(stretch, sum);
    }
    const double seenRadius = std::abs(radius) * std::sqrt(stretch);
    const bool isPerspective = view.projection[11] != 0.0f;
    const double nearest = isPerspective ? -double(view.modelview[14]) - seenRadius : 1.0;
    const double perLength = 0.5 * std::max(std::abs(double(view.projection[0])) * view.viewport[2],
                                            std::abs(double(view.projection[5])) * view.viewport[3]);
    const double pixels = seenRadius * perLength;
    if (!(nearest > 0.0) || !std::isfinite(pixels))
        return std::numeric_limits<int>::max();
    if (pixels <= outlineError * nearest)
        return 0;
    const double slices = RyFastMath::Pi / std::acos(1.0 - outlineError * nearest / pixels);
    return slices < 1e6 ? int(std::ceil(slices)) : std::numeric_limits<int>::max();
}

void sphereVertex(const RyVec3 &unit, float radius, float normalSign)
{
    glNormal3f(unit.x * normalSign, unit.y * normalSign, unit.z * normalSign);
    glVertex3f(unit.x * radius, unit.y * radius, unit.z * radius);
}

} // namespace

RyLine3 RyGLUtility::pixelToRay(const QPoint &point)
{
    const CurrentView view;
    const double x = 2.0 * point.x() * s_devicePixelRatio / std::max(view.viewport[2], 1) - 1.0;
    const double y = 1.0 - 2.0 * point.y() * s_devicePixelRatio / std::max(view.viewport[3], 1);
    return RyViewMatrices::unproject(view.modelview, view.projection, x, y);
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
    // Lines are seen one by one, the facets of a small ball are not.
    const int shown = solid ? std::min(density, mostSlices(double(radius))) : density;
    const int slices = std::max(shown, 3);
    const int stacks = std::max(shown / 2, 2);
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
