#include "rycore/io/gltf/save/RyGltfCarriedVertices.h"

#include "rycore/io/gltf/document/RyGltfMatrices.h"
#include "rycore/io/gltf/extras/RyGltfInfluences.h"
#include "rycore/io/gltf/save/RyGltfReach.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RySkeleton.h"

#include <algorithm>

static bool isCarried(const RyNode &figure)
{
    const std::vector<RyBone *> bones = ryOwnBones(figure);
    return std::any_of(bones.begin(), bones.end(), [](const RyBone *bone) { return bone->isCarried(); });
}

std::vector<RyGltfLinear> ryGltfCarriedLinear(const RyNode &figure, int vertexCount)
{
    if (!isCarried(figure))
        return {};
    const RyGltfLinear identity{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
    std::vector<RyGltfLinear> result(size_t(vertexCount), identity);
    for (const RyGltfBoneWeights &each : ryGltfBoneWeights(&figure)) {
        const auto *bone = qobject_cast<const RyBone *>(each.bone);
        if (!bone || !bone->isCarried())
            continue;
        const RyAffine &map = bone->getCarried().map;
        for (size_t i = 0; i < each.weights.vertices.size(); ++i) {
            const auto vertex = size_t(each.weights.vertices[i]);
            if (vertex >= result.size())
                break; // maps of scripts may be longer than the mesh
            const double weight = double(each.weights.weights[i]) / 65535.0;
            for (size_t row = 0; row < 3; ++row) {
                for (size_t column = 0; column < 3; ++column)
                    result[vertex][row][column] += weight * (map.m[row][column] - identity[row][column]);
            }
        }
    }
    return result;
}

RyGltfCarriedVertices::RyGltfCarriedVertices(const RyGltfScenePatch &patch)
    : RyGltfStrayVertices(patch.source.document->model()), m_patch(patch)
{
    for (const RyGltfFigureSource &figure : patch.source.figures) {
        if (figure.sceneNode && figure.sceneNode->getScene() && !figure.skins.empty() &&
            !figure.skins.front().rebound && figure.canWriteVertices() && isCarried(*figure.sceneNode))
            addFigure(figure);
    }
}

void RyGltfCarriedVertices::addFigure(const RyGltfFigureSource &figure)
{
    constexpr size_t enough = 400; // to see how far they go
    const auto *shape = qobject_cast<const RyFacetShape *>(RyShape::getCurrentShapeForNode(figure.sceneNode));
    const std::vector<RyVec3> &positions = shape->getFacetMesh()->getPositions();
    const RyGltfInfluences influences(figure.sceneNode, int(positions.size()));
    const RyGltfModel &model = m_patch.source.document->model();
    const double height =
        RyGltfReach().heightOf(*figure.sceneNode) * ryGltfSize(figure.sceneNode->worldMap()) / m_patch.source.unit;
    const size_t step = positions.size() / enough + 1;
    std::vector<bool> isDone(positions.size(), false);
    for (size_t p = 0; p < figure.parts.size() && height > 0.0; ++p) {
        const RyGltfPartSource &part = figure.parts[p];
        const auto skin = std::find_if(figure.skins.begin(), figure.skins.end(),
                                       [&part](const RyGltfSkinSource &each) { return each.skin == part.skin; });
        const std::vector<int> &vertices = figure.meshParts->parts[p].vertexOfSplit;
        const std::vector<float> points = m_patch.source.document->readFloats(
            model.meshes[size_t(part.mesh)].primitives[size_t(part.primitive)].positions);
        for (size_t split = 0; split < vertices.size() && 3 * split + 2 < points.size(); ++split) {
            const auto vertex = size_t(vertices[split]);
            if (skin == figure.skins.end() || vertex % step != 0 || isDone[vertex] ||
                influences.of(int(vertex)).size() < 2)
                continue;
            isDone[vertex] = true;
            const double read[3] = {points[3 * split], points[3 * split + 1], points[3 * split + 2]};
            Eigen::Vector3d before;
            skin->toFigure.mapPoint(read, before.data());
            const RyVec3 &position = positions[vertex];
            std::map<int, Term> terms;
            for (const RyGltfInfluences::Influence &influence : influences.of(int(vertex))) {
                const auto edit = m_patch.edits.find(m_patch.nodeOf.of(influences.bones()[influence.bone]));
                if (edit == m_patch.edits.end() || !edit->second.source)
                    continue;
                const RyAffine &bind = edit->second.source->bind;
                const Eigen::Vector3d now = ryGltfColumns(bind * edit->second.carried.map).inverse() *
                                            Eigen::Vector3d(position.x, position.y, position.z);
                const double weight = double(influence.weight) / 65535.0;
                terms[edit->first].place += weight * (now - ryGltfColumns(bind).inverse() * before);
            }
            addPoint(height, terms);
        }
    }
}
