#include "rycore/io/gltf/save/RyGltfMorphPatch.h"

#include "rycore/io/gltf/save/RyGltfMorphWriter.h"
#include "rycore/scene/RyShape.h"

#include <nlohmann/json.hpp>

#include <algorithm>

using Json = nlohmann::ordered_json;

void RyGltfMorphPatch::apply()
{
    for (const RyGltfFigureSource &figure : m_patch.source.figures) {
        if (!figure.sceneNode || !figure.sceneNode->getScene())
            continue;
        const RyShape *shape = RyShape::getCurrentShapeForNode(figure.sceneNode);
        QStringList added, removed;
        std::vector<const RyMorph *> known;
        for (const RyGltfMorphSource &source : figure.morphs) {
            const bool isThere = source.morph && shape && source.morph->getShape() == shape;
            if (isThere)
                known.push_back(source.morph);
            else
                removed.append(QStringLiteral("target %1").arg(source.targets.front().number));
            const float value = isThere ? RyGltfMorphWriter::valueOf(*source.morph) : 0.0f;
            if (value == source.value)
                continue;
            for (const RyGltfMorphSource::Target &target : source.targets)
                write(target, value);
        }
        for (const RyMorph *morph : shape ? shape->getMorphs() : std::vector<RyMorph *>()) {
            if (std::find(known.begin(), known.end(), morph) == known.end())
                added.append(QLatin1Char('"') + morph->getName() + QLatin1Char('"'));
        }
        m_patch.sayOf(QStringLiteral("Morphs that were removed stay in the file, at 0: %1"), removed);
        m_patch.sayOf(QStringLiteral("Morphs that the file does not have are not written into its meshes: %1"), added);
    }
}

void RyGltfMorphPatch::write(const RyGltfMorphSource::Target &target, float value)
{
    Json &nodes = m_patch.document.json()["nodes"];
    if (size_t(target.node) >= nodes.size())
        return;
    Json &node = nodes[size_t(target.node)];
    const auto mesh = node.find("mesh");
    if (mesh == node.end())
        return; // nothing of it is shown any more
    const Json &json = std::as_const(m_patch.document).json()["meshes"][mesh->get<size_t>()];
    size_t count = 0;
    for (const RyGltfPrimitive &primitive : m_patch.document.model().meshes[mesh->get<size_t>()].primitives)
        count = std::max(count, primitive.morphPositions.size());
    if (size_t(target.number) >= count)
        return;
    if (!node.contains("weights"))
        node["weights"] = json.contains("weights") ? json["weights"] : Json::array();
    Json &weights = node["weights"];
    while (weights.size() < count)
        weights.push_back(0.0);
    weights[size_t(target.number)] = value;
}
