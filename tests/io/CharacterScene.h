#pragma once

#include "evaluator/GltfEvaluator.h"
#include "rycore/io/gltf/extras/RyGltfOrigin.h"
#include "rycore/scene/RyScene.h"

#include <Eigen/Core>

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <map>
#include <random>
#include <vector>

class RyBone;

/// A scene opened from a file, beside an independent reading of the same file.
class CharacterScene
{
public:
    /// Fails the running test when the file cannot be opened.
    explicit CharacterScene(const QString &path);

    RyScene scene;
    GltfEvaluator file;
    QStringList messages;
    double height = 0.0; ///< of what the file shows, centimetres

    const RyGltfOrigin &origin() const;
    double unit() const { return origin().unit; }
    std::vector<RyBone *> bones() const;
    int nodeOf(const RyNode *node) const;

    /// Where the scene shows the vertices of the file, in centimetres, by node and primitive of the file.
    using Positions = std::map<std::pair<int, int>, std::vector<Eigen::Vector3d>>;
    Positions shown() const;
    /// The same without any pose: the meshes as they stand in the scene.
    Positions atRest() const;
};

/// What a file shows, in centimetres.
CharacterScene::Positions positionsOf(const GltfEvaluator &file, double unit, const GltfPose &pose = {});
/// Infinite when the two do not hold the same primitives and counts.
double largestDistance(const CharacterScene::Positions &a, const CharacterScene::Positions &b);
double heightOf(const CharacterScene::Positions &positions);

/// The rest of a file's joints, derived from its inverse bind matrices (without them from its nodes): for column
/// vectors, in file units.
struct RestFrames
{
    explicit RestFrames(const GltfEvaluator &file);

    std::map<int, Eigen::Matrix4d> world;
    std::map<int, Eigen::Matrix4d> local;

    /// All joints at rest.
    GltfPose pose() const;
};

/// Clears the pose of the scene and gives some joints random turns.
void turnRandomly(CharacterScene &character, std::mt19937 &random);
/// The turns of the scene's bones in the nodes of a file, applied about their own axes to its rest. Fails the test when
/// a bone's axes are not those of its joint.
GltfPose poseFor(const GltfEvaluator &file, const CharacterScene &character);

/// Moves and turns a share of the joints at random, in one step. Gives the bones that were touched.
std::vector<RyBone *> moveSomeJoints(CharacterScene &character, double share, std::mt19937 &random);

/// Whether two dumps say the same but for the last digits of numbers, which may have gone through a file's matrices.
/// Prints the first differences.
bool sameDumps(const QString &a, const QString &b);

QByteArray bytesOf(const QString &path);
/// The characters that hold joints, by file name.
QStringList characterNames();
