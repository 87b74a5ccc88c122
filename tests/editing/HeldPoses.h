#pragma once

#include <Eigen/Core>

#include <QStringList>

#include <map>
#include <set>
#include <vector>

class CharacterScene;
class RyBone;
class RyScene;

/// What a saved file has to hold of the pose of a scene, worked out from the scene and from where the file binds its
/// joints: a joint that a clip drives has no matrix and takes the nearest pose without shear, and what hangs below goes
/// along. All bones must be joints of the file.
class HeldPoses
{
public:
    /// `saved` is what a save of `scene` wrote, opened; the figures of both have the same bones.
    HeldPoses(const RyScene &scene, const CharacterScene &saved);

    /// The joints that cannot hold the shear of their pose.
    QStringList sheared() const;
    /// The first node of the file that stands elsewhere; empty where there is none.
    QString firstDifference() const;
    /// Gives the bones of the scene the poses that the file holds in place of sheared ones, as far as bones can.
    void applyTo(RyScene &scene) const;

private:
    Eigen::Matrix4d worldOf(const RyBone &bone) const;
    Eigen::Matrix4d shownBy(const RyBone &bone) const;

    const CharacterScene &m_saved;
    double m_unit;
    std::map<int, Eigen::Matrix4d> m_binds; ///< of joints, joint to figure space
    std::map<const RyBone *, int> m_nodes;  ///< by bone of the scene
    std::vector<Eigen::Matrix4d> m_worlds;  ///< by node of the file; in file units, for column vectors
    std::set<const RyBone *> m_sheared;
};
