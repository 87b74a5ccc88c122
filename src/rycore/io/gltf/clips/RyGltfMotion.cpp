#include "rycore/io/gltf/clips/RyGltfMotion.h"

RyGltfMotionPiece::RyGltfMotionPiece(const RyGltfMotion &motion, float from, float to, const Keys &near)
    : m_motion(motion)
{
    for (size_t i = 0; i < m_pieces.size(); ++i) {
        if (motion.curves[i])
            m_pieces[i].emplace(*motion.curves[i], from, to, near[i]);
    }
}

RyGltfMotionPiece::Keys RyGltfMotionPiece::keys() const
{
    Keys keys{};
    for (size_t i = 0; i < m_pieces.size(); ++i)
        keys[i] = m_pieces[i] ? m_pieces[i]->key() : 0;
    return keys;
}

Eigen::Vector3d RyGltfMotionPiece::translation(double time) const
{
    const auto &piece = m_pieces[size_t(RyGltfPath::Translation)];
    return piece ? piece->vector(time) : m_motion.rest.translation;
}

Eigen::Quaterniond RyGltfMotionPiece::rotation(double time) const
{
    const auto &piece = m_pieces[size_t(RyGltfPath::Rotation)];
    return piece ? piece->rotation(time) : m_motion.rest.rotation;
}

Eigen::Vector3d RyGltfMotionPiece::scale(double time) const
{
    const auto &piece = m_pieces[size_t(RyGltfPath::Scale)];
    return piece ? piece->vector(time) : m_motion.rest.scale;
}

Eigen::Affine3d RyGltfMotionPiece::map(double time) const
{
    return m_motion.matrix ? *m_motion.matrix : parts(time).map();
}

std::optional<Eigen::Vector3d> RyGltfMotionPiece::angularVelocity() const
{
    const auto &piece = m_pieces[size_t(RyGltfPath::Rotation)];
    return piece ? piece->angularVelocity() : Eigen::Vector3d(Eigen::Vector3d::Zero());
}

std::optional<RyGltfCurvePiece::Line> RyGltfMotionPiece::straightScale() const
{
    const auto &piece = m_pieces[size_t(RyGltfPath::Scale)];
    const Eigen::Vector3d &still = m_motion.rest.scale;
    return piece ? piece->line() : RyGltfCurvePiece::Line{still, still, Eigen::Vector3d::Zero()};
}
