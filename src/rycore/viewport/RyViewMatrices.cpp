#include "rycore/viewport/RyGL.h"

#include "rycore/viewport/RyViewMatrices.h"

#include "rycore/scene/RyCamera.h"

#include <algorithm>
#include <cmath>

namespace {

/// Inverts a 4x4 matrix by elimination with pivots; false when singular.
bool invert4(const double in[16], double out[16])
{
    double a[4][8];
    for (int r = 0; r < 4; ++r) {
        for (int c = 0; c < 4; ++c) {
            a[r][c] = in[4 * r + c];
            a[r][4 + c] = r == c ? 1.0 : 0.0;
        }
    }
    for (int column = 0; column < 4; ++column) {
        int pivot = column;
        for (int r = column + 1; r < 4; ++r) {
            if (std::abs(a[r][column]) > std::abs(a[pivot][column]))
                pivot = r;
        }
        if (a[pivot][column] == 0.0)
            return false;
        std::swap_ranges(a[pivot], a[pivot] + 8, a[column]);
        const double scale = 1.0 / a[column][column];
        for (double &value : a[column])
            value *= scale;
        for (int r = 0; r < 4; ++r) {
            if (r == column)
                continue;
            const double factor = a[r][column];
            for (int c = 0; c < 8; ++c)
                a[r][c] -= factor * a[column][c];
        }
    }
    for (int r = 0; r < 4; ++r)
        std::copy(a[r] + 4, a[r] + 8, out + 4 * r);
    return true;
}

/// Row vector times matrix, divided by w.
RyVec3 mapHomogeneous(const double m[16], double x, double y, double z)
{
    double r[4];
    for (int c = 0; c < 4; ++c)
        r[c] = x * m[c] + y * m[4 + c] + z * m[8 + c] + m[12 + c];
    const double w = r[3] == 0.0 ? 1e-30 : r[3];
    return {float(r[0] / w), float(r[1] / w), float(r[2] / w)};
}

} // namespace

RyViewMatrices::RyViewMatrices(const RyCamera &camera, double width, double height)
    : m_width(std::max(width, 1.0)), m_height(std::max(height, 1.0))
{
    m_view.translate(-camera.getWSPos());
    m_view.rotate(camera.getWSRot().inverse());

    m_projection = RyMatrix4(false);
    const double aspect = m_width / m_height;
    const double focal = camera.focalDistance();
    if (camera.isOrthographic()) {
        const double half = 0.5 * camera.orthographicHeight();
        const double range = 50.0 * focal + 5000.0;
        m_projection[0][0] = float(1.0 / (half * aspect));
        m_projection[1][1] = float(1.0 / half);
        m_projection[2][2] = float(-1.0 / range);
        m_projection[3][3] = 1.0f;
    } else {
        const double nearPlane = std::max(focal * 0.02, 0.01);
        const double farPlane = focal * 40.0 + 3000.0;
        const double scale = 1.0 / std::tan(0.5 * camera.fieldOfView());
        m_projection[0][0] = float(scale / aspect);
        m_projection[1][1] = float(scale);
        m_projection[2][2] = float((farPlane + nearPlane) / (nearPlane - farPlane));
        m_projection[2][3] = -1.0f;
        m_projection[3][2] = float(2.0 * farPlane * nearPlane / (nearPlane - farPlane));
    }
}

bool RyViewMatrices::project(const RyVec3 &world, QPointF &pixel) const
{
    const RyVec3 eye = m_view.multVecMatrix(world);
    const double w = m_projection[2][3] != 0.0f ? -double(eye.z) : 1.0;
    if (w <= 1e-6)
        return false;
    pixel = QPointF((double(eye.x) * m_projection[0][0] / w + 1.0) * 0.5 * m_width,
                    (1.0 - double(eye.y) * m_projection[1][1] / w) * 0.5 * m_height);
    return true;
}

RyLine3 RyViewMatrices::ray(const QPointF &pixel) const
{
    return unproject(m_view.data(), m_projection.data(), 2.0 * pixel.x() / m_width - 1.0,
                     1.0 - 2.0 * pixel.y() / m_height);
}

float RyViewMatrices::pixelSize(const RyVec3 &world) const
{
    const double depth = -double(m_view.multVecMatrix(world).z);
    const double w = m_projection[2][3] != 0.0f ? std::max(std::abs(depth), 1e-6) : 1.0;
    return float(2.0 * w / (double(m_projection[1][1]) * m_height));
}

void RyViewMatrices::load() const
{
    glMatrixMode(GL_PROJECTION);
    glLoadMatrixf(m_projection.data());
    glMatrixMode(GL_MODELVIEW);
    glLoadMatrixf(m_view.data());
}

RyLine3 RyViewMatrices::unproject(const float modelview[16], const float projection[16], double x, double y)
{
    double product[16];
    for (int r = 0; r < 4; ++r) {
        for (int c = 0; c < 4; ++c) {
            double sum = 0.0;
            for (int k = 0; k < 4; ++k)
                sum += double(modelview[4 * r + k]) * projection[4 * k + c];
            product[4 * r + c] = sum;
        }
    }
    double inverse[16];
    if (!invert4(product, inverse))
        return RyLine3(RyVec3(), RyVec3(0, 0, -1));
    return RyLine3(mapHomogeneous(inverse, x, y, -1.0), mapHomogeneous(inverse, x, y, 1.0));
}

bool RyViewMatrices::operator==(const RyViewMatrices &o) const
{
    return m_view == o.m_view && m_projection == o.m_projection && m_width == o.m_width && m_height == o.m_height;
}
