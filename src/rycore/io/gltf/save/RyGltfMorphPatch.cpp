#include "rycore/io/gltf/save/RyGltfMorphPatch.h"

#include "rycore/io/gltf/clips/RyGltfClips.h"
#include "rycore/io/gltf/document/RyGltfReferences.h"
#include "rycore/io/gltf/extras/RyExtrasJson.h"
#include "rycore/io/gltf/save/RyGltfMorphWriter.h"
#include "rycore/scene/RyMeshPart.h"
#include "rycore/scene/RyShape.h"

#include <nlohmann/json.hpp>

#include <algorithm>

using Json = nlohmann::ordered_json;

namespace {

/// A list of weights; those that are new are 0.
void resize(Json &weights, size_t count)
{
    while (weights.size() > count)
        weights.erase(weights.size() - 1);
    while (weights.size() < count)
        weights.push_back(0.0);
}

} // namespace

void RyGltfMorphPatch::apply(QStringList *losses)
{
    for (const RyGltfFigureSource &figure : m_patch.source.figures) {
        const RyNode *node = figure.sceneNode;
        const RyShape *shape = node && node->getScene() ? RyShape::getCurrentShapeForNode(node) : nullptr;
        if (!shape)
            continue;
        writeKnown(figure, *shape);
        const Morphs added = figure.newMorphs(*shape);
        if (added.empty())
            continue;
        std::set<int> nodes;
        for (const RyGltfPartSource &part : figure.parts)
            nodes.insert(part.node);
        if (std::all_of(nodes.begin(), nodes.end(), [&](int each) { return canTakeMore(figure, each); })) {
            for (const int each : nodes)
                addTo(figure, each, *shape, added);
        } else if (losses) {
            losses->append(
                QStringLiteral("%1 new morphs of \"%2\": others use its meshes as well, or clips their morphs")
                    .arg(added.size())
                    .arg(node->getName()));
        }
    }
}

/// Writes the values of the figure's morphs that its file has.
void RyGltfMorphPatch::writeKnown(const RyGltfFigureSource &figure, const RyShape &shape)
{
    int removed = 0;
    for (const RyGltfMorphSource &source : figure.morphs) {
        const bool isThere = source.morph && source.morph->getShape() == &shape;
        removed += !isThere;
        const float value = isThere ? RyGltfMorphWriter::valueOf(*source.morph) : 0.0f;
        if (value == RyGltfMorphWriter::readable(source.value))
            continue;
        for (const RyGltfMorphSource::Target &target : source.targets)
            write(target, value);
    }
    if (removed > 0) {
        m_patch.say(QStringLiteral("%1 morphs that were removed from \"%2\" stay in the file, at 0")
                        .arg(removed)
                        .arg(figure.sceneNode->getName()));
    }
}

size_t RyGltfMorphPatch::countTargets(int mesh) const
{
    return m_patch.document.model().meshes[size_t(mesh)].targetCount();
}

/// Those of the node itself, as many as its mesh has targets; where it has none, those of the mesh become its own.
Json &RyGltfMorphPatch::weightsOf(int node)
{
    const int mesh = m_patch.document.model().nodes[size_t(node)].mesh;
    const Json &ofMesh = std::as_const(m_patch.document).json()["meshes"][size_t(mesh)];
    Json &json = m_patch.document.json()["nodes"][size_t(node)];
    if (!json.contains("weights"))
        json["weights"] = ofMesh.contains("weights") ? ofMesh["weights"] : Json::array();
    Json &weights = json["weights"];
    if (weights.size() < countTargets(mesh))
        resize(weights, countTargets(mesh));
    return weights;
}

void RyGltfMorphPatch::write(const RyGltfMorphSource::Target &target, float value)
{
    const RyGltfModel &model = m_patch.document.model();
    const int mesh = size_t(target.node) < model.nodes.size() ? model.nodes[size_t(target.node)].mesh : -1;
    if (mesh >= 0 && size_t(target.number) < countTargets(mesh)) // else nothing of it is shown any more
        weightsOf(target.node)[size_t(target.number)] = value;
}

// --- Morphs that the file does not have

/// Whether the node's mesh is shown by it alone, whole and as a part of the figure in one space, and no clip counts its
/// targets.
bool RyGltfMorphPatch::canTakeMore(const RyGltfFigureSource &figure, int node) const
{
    const RyGltfModel &model = m_patch.document.model();
    const int mesh = model.nodes[size_t(node)].mesh;
    if (mesh < 0 || std::count_if(model.nodes.begin(), model.nodes.end(),
                                  [mesh](const RyGltfNode &each) { return each.mesh == mesh; }) != 1)
        return false;
    const size_t count = countTargets(mesh);
    size_t shown = 0;
    for (size_t p = 0; p < figure.parts.size(); ++p) {
        if (figure.parts[p].node == node && !figure.meshParts->parts[p].vertexOfSplit.empty() &&
            meshToFigure(figure.parts[p]))
            ++shown;
    }
    const std::vector<RyGltfPrimitive> &primitives = model.meshes[size_t(mesh)].primitives;
    if (shown != primitives.size() ||
        std::any_of(primitives.begin(), primitives.end(),
                    [count](const RyGltfPrimitive &each) { return each.morphPositions.size() != count; }))
        return false;
    const Json &tree = std::as_const(m_patch.document).json();
    const Json &json = tree["meshes"][size_t(mesh)];
    if (json.contains("extras") && !json["extras"].is_object())
        return false;
    for (const Json &clip : RyGltfReferences::listIn(tree, "animations")) {
        for (const Json &channel : RyGltfReferences::listIn(clip, "channels")) {
            const Json *target = RyExtrasJson::find(channel, "target");
            if (target && ryGltfDrivesWeights(*target, node, mesh))
                return false;
        }
    }
    return true;
}

/// None for the mesh of a rebound skin that stays as it is: no one map says where its vertices are in the scene.
std::optional<RyAffine> RyGltfMorphPatch::meshToFigure(const RyGltfPartSource &part) const
{
    if (part.skin < 0)
        return m_patch.edits.at(part.node).bind;
    const auto ofSkin = m_patch.toFigure.find(part.skin);
    if (ofSkin == m_patch.toFigure.end())
        return {};
    return ofSkin->second * RyAffine::fromScale(m_patch.source.unit);
}

void RyGltfMorphPatch::addTo(const RyGltfFigureSource &figure, int node, const RyShape &shape, const Morphs &morphs)
{
    const int mesh = m_patch.document.model().nodes[size_t(node)].mesh;
    const size_t before = countTargets(mesh);
    Json &weights = weightsOf(node);
    resize(weights, before);
    for (size_t p = 0; p < figure.parts.size(); ++p) {
        if (figure.parts[p].node != node)
            continue;
        RyGltfMorphWriter(m_patch.document, shape, *meshToFigure(figure.parts[p]))
            .appendTargets(mesh, figure.parts[p].primitive, figure.meshParts->parts[p], morphs);
    }
    Json &names = m_patch.document.json()["meshes"][size_t(mesh)]["extras"]["targetNames"];
    if (!names.is_array())
        names = Json::array();
    while (names.size() < before)
        names.push_back("");
    for (size_t i = 0; i < morphs.size(); ++i) {
        const Json name = morphs[i]->getName().toStdString();
        if (before + i < names.size())
            names[before + i] = name;
        else
            names.push_back(name);
        weights.push_back(RyGltfMorphWriter::valueOf(*morphs[i]));
    }
    Json &json = m_patch.document.json()["meshes"][size_t(mesh)];
    if (json.contains("weights"))
        resize(json["weights"], weights.size());
}
