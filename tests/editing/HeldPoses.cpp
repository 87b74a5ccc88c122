#include "HeldPoses.h"

#include "evaluator/GltfTransform.h"
#include "io/CharacterScene.h"

#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"

#include <nlohmann/json.hpp>

#include <Eigen/LU>

#include <functional>
#include <stdexcept>

namespace {

/// How much a number of a pose may differ, which is single precision in files and scenes.
constexpr double Tolerance = 2e-5;

Eigen::Matrix4d columns(const RyAffine &rows, double unit)
{
    Eigen::Matrix4d map = Eigen::Matrix4d::Identity();
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 3; ++column)
            map(column, row) = rows.m[row][column] / (row == 3 ? unit : 1.0);
    }
    return map;
}

RyMatrix3 rows(const Eigen::Matrix3d &map)
{
    RyMatrix3 matrix;
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column)
            matrix[row][column] = float(map(column, row));
    }
    return matrix;
}

std::vector<RyBone *> bonesOf(const RyScene &scene)
{
    std::vector<RyBone *> bones;
    for (RyNode *node : scene.getNodesInTreeOrder()) {
        if (auto *bone = qobject_cast<RyBone *>(node))
            bones.push_back(bone);
    }
    return bones;
}

std::set<int> animatedNodes(const GltfEvaluator &file)
{
    std::set<int> nodes;
    for (const auto &clip : file.tree().value("animations", nlohmann::json::array())) {
        for (const auto &channel : clip.at("channels"))
            nodes.insert(channel.at("target").value("node", -1));
    }
    return nodes;
}

/// Of joints to the figure, as the skins say it.
std::map<int, Eigen::Matrix4d> bindsOf(const GltfEvaluator &file)
{
    std::map<int, Eigen::Matrix4d> binds;
    for (int skin = 0; skin < file.skinCount(); ++skin) {
        const auto &entry = file.tree().at("skins").at(size_t(skin));
        const auto numbers = entry.at("extras").at("RYHOST_rigging").at("toFigure").get<std::vector<double>>();
        Eigen::Matrix4d toFigure = Eigen::Matrix4d::Identity();
        toFigure.topRows<3>() = Eigen::Map<const Eigen::Matrix<double, 3, 4>>(numbers.data());
        const std::vector<int> &joints = file.joints(skin);
        for (size_t j = 0; j < joints.size(); ++j)
            binds.emplace(joints[j], toFigure * file.inverseBindMatrices(skin)[j].inverse());
    }
    return binds;
}

bool needsShear(const Eigen::Matrix4d &local)
{
    const GltfTransform nearest = GltfTransform::nearestTo(local);
    return (nearest.matrix() - local).cwiseAbs().maxCoeff() > 1e-5 * nearest.scale.cwiseAbs().maxCoeff();
}

} // namespace

HeldPoses::HeldPoses(const RyScene &scene, const CharacterScene &saved)
    : m_saved(saved), m_unit(saved.unit()), m_binds(bindsOf(saved.file))
{
    const std::vector<RyBone *> bones = bonesOf(scene), reopened = bonesOf(saved.scene);
    if (bones.size() != reopened.size())
        throw std::runtime_error("the saved scene has other bones");
    std::map<int, const RyBone *> boneOf;
    for (size_t i = 0; i < bones.size(); ++i) {
        const int node = saved.nodeOf(reopened[i]);
        if (!m_binds.count(node) || !bones[i]->inheritsScale())
            throw std::runtime_error("a bone is no joint, or leaves out its parent's scale");
        boneOf[node] = bones[i];
        m_nodes[bones[i]] = node;
    }
    const std::set<int> animated = animatedNodes(saved.file);
    m_worlds.resize(size_t(saved.file.nodeCount()));
    std::vector<bool> isPlaced(m_worlds.size(), false);
    const std::function<void(int)> place = [&](int node) {
        const int above = saved.file.parent(node);
        if (above >= 0 && !isPlaced[size_t(above)])
            place(above);
        isPlaced[size_t(node)] = true;
        const Eigen::Matrix4d parent =
            above < 0 ? Eigen::Matrix4d(Eigen::Matrix4d::Identity()) : m_worlds[size_t(above)];
        const auto bone = boneOf.find(node);
        Eigen::Matrix4d local = saved.file.localMatrix(node);
        if (bone != boneOf.end()) {
            local = parent.inverse() * worldOf(*bone->second);
            if (animated.count(node) && needsShear(local)) {
                m_sheared.insert(bone->second);
                local = GltfTransform::nearestTo(local).matrix();
            }
        }
        m_worlds[size_t(node)] = parent * local;
    };
    for (int node = 0; node < saved.file.nodeCount(); ++node) {
        if (!isPlaced[size_t(node)])
            place(node);
    }
}

/// Of its joint, below what the file holds of the bone above.
Eigen::Matrix4d HeldPoses::worldOf(const RyBone &bone) const
{
    const auto *above = qobject_cast<const RyBone *>(bone.getNodeParent());
    const Eigen::Matrix4d &bind = m_binds.at(m_nodes.at(&bone));
    return above ? Eigen::Matrix4d(shownBy(*above) * columns(bone.getLocalMap(), m_unit) * bind)
                 : Eigen::Matrix4d(columns(bone.worldMap(), m_unit) * bind);
}

/// From figure space to the world, as what follows a joint goes.
Eigen::Matrix4d HeldPoses::shownBy(const RyBone &bone) const
{
    const int node = m_nodes.at(&bone);
    return m_worlds[size_t(node)] * m_binds.at(node).inverse();
}

QStringList HeldPoses::sheared() const
{
    QStringList names;
    for (const RyBone *bone : m_sheared)
        names.append(bone->getName());
    names.sort();
    return names;
}

QString HeldPoses::firstDifference() const
{
    const std::vector<Eigen::Matrix4d> worlds = m_saved.file.worldMatrices();
    for (size_t node = 0; node < worlds.size(); ++node) {
        const double off = (worlds[node] - m_worlds[node]).cwiseAbs().maxCoeff();
        if (!(off <= Tolerance * std::max(1.0, m_worlds[node].cwiseAbs().maxCoeff())))
            return QStringLiteral("%1 is off by %2").arg(m_saved.file.nodeName(int(node)).c_str()).arg(off);
    }
    return {};
}

void HeldPoses::applyTo(RyScene &scene) const
{
    for (RyBone *bone : bonesOf(scene)) {
        if (!m_sheared.count(bone))
            continue;
        const auto *above = qobject_cast<const RyBone *>(bone->getNodeParent());
        const Eigen::Matrix4d parent = above ? shownBy(*above) : columns(bone->getSkeleton()->worldMap(), m_unit);
        const Eigen::Matrix4d pose = parent.inverse() * shownBy(*bone);
        // Numbers that say the same come back as they were written.
        if ((pose - columns(bone->getLocalMap(), m_unit)).cwiseAbs().maxCoeff() < 1e-4)
            continue;
        // A bone scales along its own axes, which need not be those of its joint.
        const Eigen::Matrix4d axes = columns(RyAffine::fromRotation(bone->getOrientation()), 1.0);
        const GltfTransform inAxes = GltfTransform::nearestTo(axes.inverse() * pose * axes);
        const Eigen::Matrix3d turn =
            (axes * GltfTransform{{0, 0, 0}, inAxes.rotation, {1, 1, 1}}.matrix() * axes.inverse())
                .topLeftCorner<3, 3>();
        const Eigen::Matrix3d stretch =
            axes.topLeftCorner<3, 3>() * inAxes.scale.asDiagonal() * axes.topLeftCorner<3, 3>().transpose();
        const RyVec3 origin = bone->getOrigin();
        const Eigen::Vector4d at = Eigen::Vector4d(origin.x / m_unit, origin.y / m_unit, origin.z / m_unit, 1.0);
        const Eigen::Vector4d moved = m_unit * (pose * at - at);
        RyAffine nothing;
        RyQuat rotation;
        RyAffine(RyMatrix4(rows(turn))).decomposePolar(nothing, rotation);
        bone->setLocalTransform({float(moved[0]), float(moved[1]), float(moved[2])}, rotation, rows(stretch), 1.0f);
    }
}
