#pragma once

#include "rycore/io/gltf/clips/RyGltfCurve.h"

#include <limits>
#include <memory>

/// A curve at one time after the other: what was found for the last one serves while no key lies between.
class RyGltfTrack
{
public:
    explicit RyGltfTrack(std::shared_ptr<const RyGltfCurve> curve) : m_curve(std::move(curve)) {}

    Eigen::Vector3d vector(double time) { return pieceAt(time).vector(time); }
    Eigen::Quaterniond rotation(double time) { return pieceAt(time).rotation(time); }

private:
    const RyGltfCurvePiece &pieceAt(double time)
    {
        if (!m_piece || time < double(m_from) || time >= double(m_to))
            seek(time);
        return *m_piece;
    }
    void seek(double time);

    std::shared_ptr<const RyGltfCurve> m_curve;
    std::optional<RyGltfCurvePiece> m_piece;
    float m_from = 0.0f; // of the piece: keys, or infinities before the first and behind the last one
    float m_to = 0.0f;
};
