#include "rycore/viewport/RyGL.h"

#include "rycore/viewport/RyViewVolume.h"

#include "rycore/math/RyFastMath.h"
#include "rycore/viewport/RyGLUtility.h"

#include <algorithm>
#include <cmath>

namespace {

/// Rounding of the rasterizer, beside half the width of a line.
constexpr double spareWidth = 1.0;

/// The pixels of one axis that may be drawn to, and the viewport that they are counted in.
struct Span
{
    double first, last, viewportFirst, viewportLength;

    void cut(int from, int length)
    {
        first = std::max(first, double(from));
        last = std::min(last, double(from) + length);
    }
    bool isEmpty() const { return last <= first; }
    double normalized(double pixel) const
    {
        return 2.0 * (pixel - viewportFirst) / std::max(viewportLength, 1.0) - 1.0;
    }
};

Span spanOf(int first, int length)
{
    return {double(first), double(first) + length, double(first), double(length)};
}

} // namespace

double RyViewVolume::at(const Row &row, const RyVec3 &place)
{
    return along(row, place) + row[3];
}

double RyViewVolume::along(const Row &row, const RyVec3 &direction)
{
    return row[0] * double(direction.x) + row[1] * double(direction.y) + row[2] * double(direction.z);
}

RyViewVolume RyViewVolume::ofContext()
{
    float modelview[16];
    float projection[16];
    GLint viewport[4];
    GLint scissor[4];
    GLfloat lineWidth = 1.0f;
    glGetFloatv(GL_MODELVIEW_MATRIX, modelview);
    glGetFloatv(GL_PROJECTION_MATRIX, projection);
    glGetIntegerv(GL_VIEWPORT, viewport);
    glGetFloatv(GL_LINE_WIDTH, &lineWidth);
    Span across = spanOf(viewport[0], viewport[2]);
    Span up = spanOf(viewport[1], viewport[3]);
    if (glIsEnabled(GL_SCISSOR_TEST)) {
        glGetIntegerv(GL_SCISSOR_BOX, scissor);
        across.cut(scissor[0], scissor[2]);
        up.cut(scissor[1], scissor[3]);
    }

    double clip[4][4]; // columns: x, y, z and w of what the rasterizer gets
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 4; ++column) {
            clip[row][column] = 0.0;
            for (int k = 0; k < 4; ++k)
                clip[row][column] += double(modelview[4 * row + k]) * double(projection[4 * k + column]);
        }
    }
    const double margin = 0.5 * double(lineWidth) + spareWidth;
    RyViewVolume volume;
    volume.m_isEmpty = across.isEmpty() || up.isEmpty();
    const bool isPerspective = projection[11] != 0.0f;
    for (int k = 0; k < 4; ++k) {
        const double w = clip[k][3];
        volume.m_sides[0][k] = clip[k][0] - across.normalized(across.first - margin) * w;
        volume.m_sides[1][k] = across.normalized(across.last + margin) * w - clip[k][0];
        volume.m_sides[2][k] = clip[k][1] - up.normalized(up.first - margin) * w;
        volume.m_sides[3][k] = up.normalized(up.last + margin) * w - clip[k][1];
        volume.m_sides[4][k] = clip[k][2] + w;
        volume.m_scale[k] = isPerspective ? w : k == 3 ? 1.0 : 0.0;
    }
    volume.m_perPixel = 2.0 * double(RyGLUtility::devicePixelRatio()) /
                        (std::max(double(std::abs(projection[5])), 1e-12) * std::max(viewport[3], 1));
    return volume;
}

bool RyViewVolume::reaches(const RyVec3 &center, const RyVec3 (&halfAxes)[3]) const
{
    if (m_isEmpty)
        return false;
    for (const Row &side : m_sides) {
        double nearest = at(side, center);
        for (const RyVec3 &half : halfAxes)
            nearest += std::abs(along(side, half));
        if (nearest < 0.0)
            return false;
    }
    return true;
}

bool RyViewVolume::reachesLine(const RyVec3 &from, const RyVec3 &to) const
{
    return reaches((from + to) * 0.5f, {(to - from) * 0.5f, RyVec3(), RyVec3()});
}

float RyViewVolume::lengthOf(float pixels, const RyVec3 &place) const
{
    return RyFastMath::toFloat(std::max(std::abs(at(m_scale, place)), 1e-6) * m_perPixel * double(pixels));
}
