#include "rycore/io/gltf/clips/RyGltfScaleSpread.h"

#include <algorithm>
#include <limits>

bool ryGltfIsQuarterTurn(const Eigen::Matrix3d &turn)
{
    return ((turn.array().abs() - turn.array().abs().round()).abs() < 1e-6).all();
}

void RyGltfScaleSpread::add(const RyGltfCurve &curve)
{
    for (size_t i = 0; i < curve.keyCount(); ++i) {
        const Eigen::Map<const Eigen::Vector3d> key(curve.key(i));
        add(Eigen::Vector3d(key));
        for (int side = -1; curve.kind == RyGltfCurve::Cubic && side <= 1; side += 2) {
            const Eigen::Vector3d tangent = Eigen::Map<const Eigen::Vector3d>(curve.key(i) + 3 * side);
            const Eigen::Vector3d grown = tangent.cwiseProduct(m_signs);
            addDifference(grown, key.cwiseAbs().maxCoeff());
        }
    }
}

void RyGltfScaleSpread::add(const Eigen::Vector3d &scale)
{
    const Eigen::Vector3d signs = scale.unaryExpr([](double factor) { return factor < 0.0 ? -1.0 : 1.0; });
    if (m_isFirst)
        m_signs = signs;
    m_isFirst = false;
    if (signs != m_signs && signs != -m_signs) // all three together turn with everything
        m_largest = std::numeric_limits<double>::infinity();
    const Eigen::Vector3d sizes = scale.cwiseAbs();
    addDifference(sizes, sizes.maxCoeff());
}

void RyGltfScaleSpread::addDifference(const Eigen::Vector3d &factors, double size)
{
    m_largest = std::max(m_largest, (factors.maxCoeff() - factors.minCoeff()) / std::max(size, 1e-12));
}
