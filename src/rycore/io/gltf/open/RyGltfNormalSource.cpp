#include "rycore/io/gltf/open/RyGltfNormalSource.h"

#include "rycore/io/gltf/document/RyGltfDocument.h"
#include "rycore/io/gltf/document/RyGltfFloats.h"

#include <cmath>

RyGltfNormalSource::RyGltfNormalSource(std::shared_ptr<const RyGltfDocument> document, int positions, int normals,
                                       const RyAffine &toFigure)
    : m_document(std::move(document)), m_positions(positions), m_normals(normals), m_toFigure(toFigure)
{}

/// A normal stands upright on the surface, however the surface is stretched.
std::vector<RyVec3> RyGltfNormalSource::normals() const
{
    const RyGltfFloats floats(*m_document, m_normals);
    const RyAffine back = m_toFigure.inverse();
    std::vector<RyVec3> result(floats.count());
    for (size_t i = 0; i < result.size(); ++i) {
        const float *from = floats.data() + 3 * i;
        double at[3];
        for (int axis = 0; axis < 3; ++axis) {
            at[axis] = back.m[axis][0] * double(from[0]) + back.m[axis][1] * double(from[1]) +
                       back.m[axis][2] * double(from[2]);
        }
        const double length = std::sqrt(at[0] * at[0] + at[1] * at[1] + at[2] * at[2]);
        if (length > 0.0 && std::isfinite(length))
            result[i] = {float(at[0] / length), float(at[1] / length), float(at[2] / length)};
    }
    return result;
}

std::vector<RyVec3> RyGltfNormalSource::positions() const
{
    const RyGltfFloats floats(*m_document, m_positions);
    std::vector<RyVec3> result;
    result.reserve(floats.count());
    for (size_t i = 0; i < floats.count(); ++i) {
        const float *from = floats.data() + 3 * i;
        const double point[3] = {double(from[0]), double(from[1]), double(from[2])};
        double at[3];
        m_toFigure.mapPoint(point, at);
        result.emplace_back(float(at[0]), float(at[1]), float(at[2]));
    }
    return result;
}
