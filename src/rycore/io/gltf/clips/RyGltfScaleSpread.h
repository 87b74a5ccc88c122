#pragma once

#include "rycore/io/gltf/clips/RyGltfCurve.h"

/// Axes that only change places, with signs, and so do the factors of a scale; false for any other rotation.
bool ryGltfIsQuarterTurn(const Eigen::Matrix3d &turn);

/// How far the three factors of a scale differ, over all of its keys.
class RyGltfScaleSpread
{
public:
    void add(const RyGltfCurve &curve);
    void add(const Eigen::Vector3d &scale);

    /// The largest difference of the sizes of two factors, of the largest factor of their key; infinite when some of
    /// the signs change.
    double largest() const { return m_largest; }
    const Eigen::Vector3d &signs() const { return m_signs; }

private:
    void addDifference(const Eigen::Vector3d &factors, double size);

    Eigen::Vector3d m_signs = Eigen::Vector3d::Ones();
    bool m_isFirst = true;
    double m_largest = 0.0;
};
