#include "CharacterScene.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <Eigen/Geometry>

#include <QFile>

#include <algorithm>
#include <limits>
#include <set>
#include <stdexcept>

namespace {

using Positions = CharacterScene::Positions;

double number(std::mt19937 &random, double low, double high)
{
    return std::uniform_real_distribution<double>(low, high)(random);
}

/// Splits the vertices of every object as the file does.
template<typename PositionOf>
Positions splitPositions(const RyGltfOrigin &document, const PositionOf &positionOf)
{
    Positions result;
    for (const RyGltfFigureSource &figure : document.figures) {
        const auto *shape = qobject_cast<RyFacetShape *>(RyShape::getCurrentShapeForNode(figure.sceneNode));
        if (!shape || !shape->getParts())
            continue;
        const auto at = positionOf(*figure.sceneNode);
        for (size_t p = 0; p < figure.parts.size(); ++p) {
            auto &points = result[{figure.parts[p].node, figure.parts[p].primitive}];
            for (const int vertex : shape->getParts()->parts[p].vertexOfSplit)
                points.push_back(at(vertex));
        }
    }
    return result;
}

Eigen::Vector3d mapped(const RyAffine &map, const RyVec3 &p)
{
    const double in[3] = {double(p.x), double(p.y), double(p.z)};
    Eigen::Vector3d out;
    map.mapPoint(in, out.data());
    return out;
}

Eigen::Matrix3d turn(int axis, double degrees)
{
    return Eigen::AngleAxisd(degrees * M_PI / 180.0, Eigen::Vector3d::Unit(axis)).toRotationMatrix();
}

} // namespace

CharacterScene::CharacterScene(const QString &path) : file(path.toStdString())
{
    QString error;
    if (!RySceneFile::open(&scene, path, &error, &messages))
        throw std::runtime_error(error.toStdString());
    height = heightOf(positionsOf(file, unit()));
}

const RyGltfOrigin &CharacterScene::origin() const
{
    return dynamic_cast<const RyGltfOrigin &>(*scene.getOrigin());
}

std::vector<RyBone *> CharacterScene::bones() const
{
    std::vector<RyBone *> list;
    for (const RySkeleton *skeleton : scene.getSkeletons())
        skeleton->getAllBones(list);
    return list;
}

int CharacterScene::nodeOf(const RyNode *node) const
{
    const RyGltfNodeSource *source = origin().findSource(node);
    return source ? source->node : -1;
}

Positions CharacterScene::shown() const
{
    return splitPositions(origin(), [](RyNode &node) {
        const std::vector<RyVec3> &positions = node.getObject()->getDeformedPositions();
        return [&positions, map = node.worldMap()](int vertex) { return mapped(map, positions[size_t(vertex)]); };
    });
}

Positions CharacterScene::atRest() const
{
    return splitPositions(origin(), [](RyNode &node) {
        const auto *shape = qobject_cast<RyFacetShape *>(RyShape::getCurrentShapeForNode(&node));
        const std::vector<RyVec3> &positions = shape->getFacetMesh()->getPositions();
        return [&positions](int vertex) { return mapped(RyAffine(), positions[size_t(vertex)]); };
    });
}

Positions positionsOf(const GltfEvaluator &file, double unit, const GltfPose &pose)
{
    Positions result;
    for (const GltfPrimitive &primitive : file.primitives()) {
        auto &points = result[{primitive.node, primitive.primitive}];
        points = file.positions(primitive, pose);
        for (Eigen::Vector3d &p : points)
            p *= unit;
    }
    return result;
}

double largestDistance(const Positions &a, const Positions &b)
{
    double worst = a.size() == b.size() ? 0.0 : std::numeric_limits<double>::infinity();
    for (const auto &[key, points] : a) {
        const auto other = b.find(key);
        worst = std::max(worst, other == b.end() ? std::numeric_limits<double>::infinity()
                                                 : gltfMaxDistance(points, other->second));
    }
    return worst;
}

double heightOf(const Positions &positions)
{
    Eigen::Vector3d low = Eigen::Vector3d::Constant(1e300);
    Eigen::Vector3d high = -low;
    for (const auto &[key, points] : positions) {
        for (const Eigen::Vector3d &p : points) {
            low = low.cwiseMin(p);
            high = high.cwiseMax(p);
        }
    }
    const Eigen::Vector3d size = high - low;
    return size.y() > 0.01 * size.maxCoeff() ? size.y() : size.maxCoeff();
}

RestFrames::RestFrames(const GltfEvaluator &file)
{
    const std::vector<Eigen::Matrix4d> worlds = file.worldMatrices();
    std::set<int> joints;
    for (int skin = 0; skin < file.skinCount(); ++skin)
        joints.insert(file.joints(skin).begin(), file.joints(skin).end());
    const auto depth = [&file](int node) {
        int count = 0;
        for (; node >= 0; node = file.parent(node))
            ++count;
        return count;
    };
    for (int skin = 0; skin < file.skinCount(); ++skin) {
        const std::vector<int> &list = file.joints(skin);
        const std::vector<Eigen::Matrix4d> &inverseBinds = file.inverseBindMatrices(skin);
        if (list.size() > 1 && std::all_of(inverseBinds.begin(), inverseBinds.end(),
                                           [](const Eigen::Matrix4d &m) { return m.isIdentity(0.0); })) {
            for (const int joint : list)
                world.emplace(joint, worlds[size_t(joint)]);
            continue;
        }
        // The mesh finds its place by the topmost joint; of several roots by the one that a walk down meets first.
        size_t anchor = 0;
        for (size_t j = 1; j < list.size(); ++j) {
            if (depth(list[j]) < depth(list[anchor]))
                anchor = j;
        }
        const Eigen::Matrix4d meshToWorld =
            (world.count(list[anchor]) ? world[list[anchor]] : worlds[size_t(list[anchor])]) * inverseBinds[anchor];
        for (size_t j = 0; j < list.size(); ++j)
            world.emplace(list[j], meshToWorld * inverseBinds[j].inverse());
    }
    // Parents before children, and what stands between two joints as it stands to its parent.
    std::vector<int> order(static_cast<size_t>(file.nodeCount()));
    for (size_t i = 0; i < order.size(); ++i)
        order[i] = int(i);
    std::map<int, int> depths;
    for (const int node : order)
        depths[node] = depth(node);
    std::stable_sort(order.begin(), order.end(), [&](int a, int b) { return depths[a] < depths[b]; });
    std::map<int, Eigen::Matrix4d> all;
    for (const int node : order) {
        const int parent = file.parent(node);
        const Eigen::Matrix4d above = parent < 0 ? Eigen::Matrix4d(Eigen::Matrix4d::Identity()) : all.at(parent);
        const auto joint = world.find(node);
        all[node] = joint != world.end() ? joint->second : Eigen::Matrix4d(above * file.localMatrix(node));
        if (joint == world.end())
            continue;
        local[node] = above.inverse() * joint->second;
    }
}

GltfPose RestFrames::pose() const
{
    GltfPose pose;
    pose.local = local;
    return pose;
}

void turnRandomly(CharacterScene &character, std::mt19937 &random)
{
    for (RyBone *bone : character.bones()) {
        bone->clearPose();
        if (number(random, 0, 1) > 0.4)
            continue;
        for (RyFloatProperty *control : {bone->getXRotControl(), bone->getYRotControl(), bone->getZRotControl()})
            control->setValue(float(number(random, -50, 50)));
    }
}

GltfPose poseFor(const GltfEvaluator &file, const CharacterScene &character)
{
    const RestFrames rest(file);
    GltfPose pose = rest.pose();
    for (const RyBone *bone : character.bones()) {
        const double degrees[3] = {double(bone->getXRotControl()->getValue()),
                                   double(bone->getYRotControl()->getValue()),
                                   double(bone->getZRotControl()->getValue())};
        if (degrees[0] == 0.0 && degrees[1] == 0.0 && degrees[2] == 0.0)
            continue;
        const RyRotationOrder order = bone->getRotationOrder();
        const Eigen::Matrix3d turned =
            turn(order[2], degrees[order[2]]) * turn(order[1], degrees[order[1]]) * turn(order[0], degrees[order[0]]);
        // The bone's axes are those of the joint but for a symmetric stretch that acts before them. A node between two
        // joints has no rest of its own; its axes are those of its place.
        const int node = character.nodeOf(bone);
        Eigen::Matrix3d stretch = Eigen::Matrix3d::Identity();
        if (const auto joint = rest.world.find(node); joint != rest.world.end()) {
            const Eigen::Matrix3d axes = turn(2, double(bone->getOrientZControl()->getValue())) *
                                         turn(1, double(bone->getOrientYControl()->getValue())) *
                                         turn(0, double(bone->getOrientXControl()->getValue()));
            stretch = axes.transpose() * joint->second.topLeftCorner<3, 3>();
            if ((stretch - stretch.transpose()).norm() > 1e-4 * stretch.norm())
                throw std::runtime_error("the bone's axes are not those of its joint");
        }
        pose.turn[node] = stretch.inverse() * turned * stretch;
    }
    return pose;
}

std::vector<RyBone *> moveSomeJoints(CharacterScene &character, double share, std::mt19937 &random)
{
    RyUndoStackHold hold;
    std::vector<RyBone *> moved;
    for (RyBone *bone : character.bones()) {
        if (number(random, 0, 1) > share)
            continue;
        const auto size = float(0.02 * character.height);
        bone->adjustOrigin(
            bone->getOrigin() +
            RyVec3(float(number(random, -1, 1)), float(number(random, -1, 1)), float(number(random, -1, 1))) * size);
        if (number(random, 0, 1) < 0.4) {
            bone->adjustOrientation(RyQuat(RyVec3(float(number(random, -1, 1)), float(number(random, -1, 1)), 0.5f),
                                           float(number(random, -2, 2))) *
                                    bone->getOrientation());
        }
        if (number(random, 0, 1) < 0.4)
            bone->adjustEndPoint(bone->getEndPoint() + RyVec3(size, -size, 0.5f * size));
        moved.push_back(bone);
    }
    hold.accept(QStringLiteral("Move joints"));
    return moved;
}

bool sameDumps(const QString &a, const QString &b)
{
    const QStringList lines = a.split(QLatin1Char('\n'));
    const QStringList others = b.split(QLatin1Char('\n'));
    int differences = 0;
    for (int i = 0; i < std::max(lines.size(), others.size()) && differences < 5; ++i) {
        const QStringList words = lines.value(i).split(QLatin1Char(' '));
        const QStringList otherWords = others.value(i).split(QLatin1Char(' '));
        bool same = words.size() == otherWords.size();
        for (int w = 0; same && w < words.size(); ++w) {
            bool isNumber = false;
            bool isOtherNumber = false;
            const double x = words[w].toDouble(&isNumber);
            const double y = otherWords[w].toDouble(&isOtherNumber);
            const bool ofVertices = lines[i].startsWith(QLatin1String("    vertices"));
            const bool isHash = ofVertices && w > 0 && words[w - 1] == QLatin1String("hash");
            const bool ofParts = lines[i].startsWith(QLatin1String("    part")); // sums of normals
            const double tolerance = (ofVertices ? 0.5 : ofParts ? 0.02 : 1e-3) + 1e-5 * std::abs(x);
            same = words[w] == otherWords[w] || isHash || (isNumber && isOtherNumber && std::abs(x - y) <= tolerance);
        }
        if (!same) {
            ++differences;
            qWarning("line %d: %s\n    instead of %s", i + 1, qPrintable(lines.value(i)), qPrintable(others.value(i)));
        }
    }
    return differences == 0;
}

QByteArray bytesOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList characterNames()
{
    return {QStringLiteral("CesiumMan.glb"),
            QStringLiteral("RiggedSimple.gltf"),
            QStringLiteral("Fox.glb"),
            QStringLiteral("kaykit_knight.glb"),
            QStringLiteral("mh_default_rig.glb"),
            QStringLiteral("mh_large.glb"),
            QStringLiteral("quad_10_influences.glb"),
            QStringLiteral("hand_flat_hierarchy.glb"),
            QStringLiteral("tentacle_84_skins.glb")};
}
