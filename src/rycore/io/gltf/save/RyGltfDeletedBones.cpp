#include "rycore/io/gltf/save/RyGltfDeletedBones.h"

#include "rycore/io/gltf/document/RyGltfMatrices.h"
#include "rycore/io/gltf/extras/RyGltfInfluences.h"
#include "rycore/io/gltf/extras/RyGltfWeightGiver.h"
#include "rycore/io/gltf/save/RyGltfReach.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RySkeleton.h"

#include <algorithm>
#include <cmath>

RyGltfDeletedBones::RyGltfDeletedBones(const RyGltfScenePatch &patch)
    : RyGltfStrayVertices(patch.source.document->model()), m_patch(patch), m_before(patch.source.document->model())
{
    for (const RyGltfNodeSource &node : patch.source.nodes) {
        const auto *bone = qobject_cast<const RyBone *>(node.sceneNode.data());
        if (node.isBone)
            m_toNode[node.node] = ryGltfColumns(bone ? node.bind * bone->getCarried().map : node.bind).inverse();
    }
    for (const RyGltfFigureSource &figure : patch.source.figures) {
        if (figure.sceneNode && figure.sceneNode->getScene() && !figure.skins.empty() && !figure.skins.front().rebound)
            addFigure(figure);
    }
}

/// Of the vertices that one of the removed joints had a share in.
std::map<int, std::vector<RyGltfDeletedBones::Share>>
RyGltfDeletedBones::sharesBefore(const RyGltfFigureSource &figure) const
{
    std::map<int, std::vector<Share>> result;
    if (!figure.meshParts || figure.meshParts->parts.size() != figure.parts.size())
        return result;
    for (size_t p = 0; p < figure.parts.size(); ++p) {
        const RyGltfPartSource &part = figure.parts[p];
        const std::vector<int> &joints = m_before.skins[size_t(part.skin)].joints;
        const auto isGone = [this](int joint) { return m_patch.removed.count(joint) > 0; };
        if (std::none_of(joints.begin(), joints.end(), isGone))
            continue;
        const RyGltfPrimitive &primitive = m_before.meshes[size_t(part.mesh)].primitives[size_t(part.primitive)];
        const std::vector<int> &vertices = figure.meshParts->parts[p].vertexOfSplit;
        std::vector<std::vector<Share>> shares(vertices.size());
        for (size_t set = 0; set < primitive.joints.size(); ++set) {
            const std::vector<std::uint32_t> places = m_patch.source.document->readUints(primitive.joints[set]);
            const std::vector<float> weights = m_patch.source.document->readFloats(primitive.weights[set]);
            for (size_t i = 0; i < 4 * vertices.size() && i < std::min(places.size(), weights.size()); ++i) {
                if (weights[i] > 0.0f && places[i] < joints.size())
                    shares[i / 4].push_back({joints[places[i]], double(weights[i])});
            }
        }
        for (size_t i = 0; i < vertices.size(); ++i) {
            if (std::any_of(shares[i].begin(), shares[i].end(), [&](const Share &s) { return isGone(s.node); }))
                result.try_emplace(vertices[i], std::move(shares[i]));
        }
    }
    return result;
}

void RyGltfDeletedBones::addFigure(const RyGltfFigureSource &figure)
{
    constexpr size_t enough = 400; // to see how far a limb goes
    const std::map<int, std::vector<Share>> before = sharesBefore(figure);
    const auto *shape = qobject_cast<const RyFacetShape *>(RyShape::getCurrentShapeForNode(figure.sceneNode));
    if (before.empty() || !shape || !shape->getFacetMesh())
        return;
    const std::vector<RyVec3> &positions = shape->getFacetMesh()->getPositions();
    const RyGltfInfluences now(figure.sceneNode, int(positions.size()));
    std::vector<const RyGltfNodeSource *> moving;
    for (const RyNode *bone : now.bones())
        moving.push_back(ryGltfMovingBone(m_patch.source, bone));
    const double size = ryGltfSize(figure.sceneNode->worldMap()) / m_patch.source.unit;
    const double height = RyGltfReach().heightOf(*figure.sceneNode) * size;
    const size_t step = before.size() / enough + 1;
    size_t number = 0;
    for (const auto &[vertex, shares] : before) {
        if (number++ % step != 0 || size_t(vertex) >= positions.size() || !(height > 0.0))
            continue;
        const RyVec3 &position = positions[size_t(vertex)];
        std::vector<Share> sharesNow;
        for (const RyGltfInfluences::Influence &influence : now.of(vertex)) {
            if (const RyGltfNodeSource *source = moving[influence.bone])
                sharesNow.push_back({source->node, double(influence.weight)});
        }
        const bool isKnown = std::all_of(shares.begin(), shares.end(),
                                         [this](const Share &share) { return m_toNode.count(share.node) > 0; });
        if (!sharesNow.empty() && isKnown)
            addVertex({position.x, position.y, position.z}, height, shares, sharesNow);
    }
}

/// `place`: at rest, in centimetres of the figure.
void RyGltfDeletedBones::addVertex(const Eigen::Vector3d &place, double height, const std::vector<Share> &before,
                                   const std::vector<Share> &now)
{
    std::map<int, double> weights;
    for (const auto &[shares, sign] : {std::pair(&before, -1.0), std::pair(&now, 1.0)}) {
        double whole = 0.0;
        for (const Share &share : *shares)
            whole += share.weight;
        for (const Share &share : *shares)
            weights[share.node] += sign * share.weight / whole;
    }
    std::map<int, Term> terms;
    for (const auto &[node, weight] : weights) {
        if (weight != 0.0)
            terms[node] = {weight, weight * (m_toNode.at(node) * place)};
    }
    addPoint(height, terms);
}
