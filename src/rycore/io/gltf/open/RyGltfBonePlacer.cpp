#include "rycore/io/gltf/open/RyGltfBonePlacer.h"

#include "rycore/figure/RyFigure.h"
#include "rycore/io/gltf/clips/RyGltfParts.h"
#include "rycore/io/gltf/document/RyGltfNodeWalk.h"
#include "rycore/io/gltf/extras/RyRiggingExtras.h"
#include "rycore/scene/RyBone.h"

#include <algorithm>
#include <cmath>

namespace {

RyAffine linearPart(RyAffine map)
{
    map.m[3][0] = map.m[3][1] = map.m[3][2] = 0.0;
    return map;
}

/// The bone turns first about the axis that runs along it.
RyRotationOrder orderAlong(const RyVec3 &inBone)
{
    int first = 0;
    for (int axis = 1; axis < 3; ++axis) {
        if (std::abs(inBone[axis]) > std::abs(inBone[first]))
            first = axis;
    }
    return RyRotationOrder::fromAxes(first, (first + 1) % 3, (first + 2) % 3);
}

/// The nearest pose that a node of this orientation holds, which scales along its own axes; the same where it has no
/// shear in them.
RyAffine withoutShear(const RyAffine &linear, const RyQuat &orientation)
{
    const RyAffine axes = RyAffine::fromRotation(orientation);
    const Eigen::Affine3d inAxes = ryGltfColumns(axes * linear * axes.inverse());
    const RyGltfParts parts = RyGltfParts::nearest(inAxes);
    if (ryGltfDistance(parts.map(), inAxes, 1.0) <= 1e-6 * inAxes.linear().norm())
        return linear;
    const RyGltfTransform held = parts.transform();
    return axes.inverse() * held.toAffine() * axes;
}

/// A pose in the parts that a node holds.
struct PoseParts
{
    RyVec3 translation;
    RyQuat rotation;
    RyMatrix3 scale;

    /// What is only the noise of single precision, in a figure so high, is no pose.
    PoseParts(const RyVec3 &translationWithNoise, const RyAffine &linear, float height)
        : translation(translationWithNoise)
    {
        RyAffine stretch;
        linear.decomposePolar(stretch, rotation);
        bool isScaled = false;
        for (int i = 0; i < 3; ++i) {
            for (int j = 0; j < 3; ++j) {
                scale[i][j] = float(stretch.m[i][j]);
                isScaled = isScaled || !(std::abs(stretch.m[i][j] - (i == j ? 1.0 : 0.0)) < 2e-6);
            }
        }
        if (translation.length() < 2e-6f * height)
            translation = RyVec3();
        if (std::abs(rotation.w) > 1.0f - 1e-12f || RyVec3(rotation.x, rotation.y, rotation.z).length() < 1e-6f)
            rotation = RyQuat();
        if (!isScaled)
            scale = RyMatrix3();
        isPose = !(translation == RyVec3() && rotation == RyQuat() && !isScaled);
    }
    bool isPose = false;
};

} // namespace

RyGltfBonePlacer::RyGltfBonePlacer(const RyGltfOrigin &origin, const RyGltfFigureDraft &figure, QStringList *messages)
    : m_origin(origin), m_figure(figure), m_messages(messages), m_sources(figure.bones.size()),
      m_guesses(figure.bones.size()), m_height(float(ryMeshHeight(figure.mesh->positions)))
{}

std::vector<RyGltfNodeSource> RyGltfBonePlacer::place()
{
    readRest();
    assignVerticesToLeaves();
    findEndMarkers();
    const std::vector<RyVec3> ends = ryGuessEndPoints(m_guesses, m_figure.mesh->positions, m_height);
    for (size_t bone = 0; bone < m_sources.size(); ++bone)
        placeBone(bone, ends[bone]);
    return std::move(m_sources);
}

void RyGltfBonePlacer::readRest()
{
    const RyAffine toCentimetres = RyAffine::fromScale(m_origin.unit);
    const RyAffine toFileUnits = RyAffine::fromScale(1.0 / m_origin.unit);
    RyBox3 joints;
    for (size_t i = 0; i < m_sources.size(); ++i) {
        RyGltfNodeSource &source = m_sources[i];
        source.node = m_figure.joints.bones[i];
        source.sceneNode = m_figure.bones[i];
        source.isBone = true;
        source.serial = m_figure.bones[i]->getSerial();
        source.figure = m_figure.place;
        source.bind = m_figure.rest.bind[i] * toCentimetres;
        source.localPose = toFileUnits * m_figure.rest.localPose[i] * toCentimetres;
        if (m_figure.joints.parents[i] < 0)
            source.localPose = source.localPose * m_figure.figure->worldMap().inverse();
        m_guesses[i].parent = m_figure.joints.parents[i];
        m_guesses[i].origin = source.bind.translation();
        source.bind.decomposePolar(source.stretch, m_guesses[i].orientation);
        joints.include(m_guesses[i].origin);
    }
    if (!(m_height > 0.0f)) // no mesh says it
        m_height = std::max(joints.getSize(), 1.0f);
}

/// Only leaves are measured by the vertices that follow them more than any other bone.
void RyGltfBonePlacer::assignVerticesToLeaves()
{
    std::vector<bool> isLeaf(m_guesses.size(), true);
    for (const RyEndPointBone &bone : m_guesses) {
        if (bone.parent >= 0)
            isLeaf[size_t(bone.parent)] = false;
    }
    const std::vector<int> &strongest = m_figure.mesh->strongestBones();
    for (size_t vertex = 0; vertex < strongest.size(); ++vertex) {
        if (strongest[vertex] >= 0 && isLeaf[size_t(strongest[vertex])])
            m_guesses[size_t(strongest[vertex])].vertices.push_back(int(vertex));
    }
}

void RyGltfBonePlacer::findEndMarkers()
{
    const RyGltfModel &model = m_origin.document->model();
    for (size_t i = 0; i < m_guesses.size(); ++i) {
        for (const int child : model.nodes[size_t(m_sources[i].node)].children) {
            const RyGltfNode &node = model.nodes[size_t(child)];
            if (!ryGltfMarksEnd(node.name))
                continue;
            m_guesses[i].hasEndMarker = true;
            m_guesses[i].endMarker = (node.transform.toAffine() * m_sources[i].bind).translation();
        }
    }
}

/// First what the file's matrices say, then what an earlier save stored beside them, as far as it fits.
void RyGltfBonePlacer::placeBone(size_t index, const RyVec3 &end)
{
    RyGltfNodeSource &source = m_sources[index];
    const RyEndPointBone &guess = m_guesses[index];
    RyBone *bone = m_figure.bones[index];
    bone->setOrigin(guess.origin, true);
    bone->setOrientation(guess.orientation, true);
    bone->setEndPoint(end, true);
    bone->setRotationOrder(orderAlong(guess.orientation.inverse().multVec(end - guess.origin)));
    RyRiggingExtras::applyToNode(*m_origin.document, source.node, m_origin.unit, 1e-4f * m_height, source.bind, *bone,
                                 m_messages);
    source.stretch = linearPart(source.bind) * RyAffine::fromRotation(bone->getOrientation().inverse());
    setPose(source);
    RyRiggingExtras::applyLimits(*m_origin.document, source.node, m_origin.unit, *bone);
    source.loaded = RyNodeValues::of(*bone);
    source.riggingState = RyRiggingExtras::nodeState(*bone);
}

/// Many values of the pose controls make one map: the stored ones where they do, otherwise the plainest.
void RyGltfBonePlacer::setPose(RyGltfNodeSource &source) const
{
    RyNode *node = source.sceneNode;
    const RyVec3 origin = node->getOrigin();
    const double from[3] = {origin.x, origin.y, origin.z};
    double at[3];
    source.localPose.mapPoint(from, at);
    const RyAffine linear = poseWithoutParentScale(source);
    const RyAffine own = RyAffine::fromTranslation(-origin) * linear * RyAffine::fromTranslation(at[0], at[1], at[2]);
    if (RyRiggingExtras::applyPose(*m_origin.document, source.node, m_origin.unit, own, 1e-4f * m_height, *node))
        return;
    const PoseParts pose({float(at[0] - from[0]), float(at[1] - from[1]), float(at[2] - from[2])},
                         withoutShear(linear, node->getOrientation()), m_height);
    if (!pose.isPose)
        return;
    node->setLocalTransform(pose.translation, pose.rotation, pose.scale, 1.0f);
    reportShear(*node, linear.toMatrix4().linear());
}

/// The linear part. What a node leaves out of its parent's map the file's node holds against it.
RyAffine RyGltfBonePlacer::poseWithoutParentScale(const RyGltfNodeSource &source) const
{
    const RyNode *parent = source.sceneNode->getNodeParent();
    if (source.sceneNode->inheritsScale() || !parent)
        return linearPart(source.localPose);
    const RyQuat turnInFigure = parent->getWSRot() * m_figure.figure->getWSRot().inverse();
    return linearPart(source.localPose * parent->figureMap()) * RyAffine::fromRotation(turnInFigure.inverse());
}

void RyGltfBonePlacer::reportShear(const RyNode &node, const RyMatrix3 &wanted) const
{
    RyVec3 position;
    RyQuat rotation;
    RyMatrix3 scale;
    float general = 1.0f;
    node.getLocalTransform(position, rotation, scale, general);
    const RyMatrix3 held = scale * RyMatrix3(rotation);
    float worst = 0.0f;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j)
            worst = std::max(worst, std::abs(wanted[i][j] - held[i][j]));
    }
    if (worst > 1e-3f && m_messages) {
        m_messages->append(
            QStringLiteral("The pose of \"%1\" is sheared; the nearest pose without shear is shown, the file's own "
                           "is kept")
                .arg(node.getName()));
    }
}
