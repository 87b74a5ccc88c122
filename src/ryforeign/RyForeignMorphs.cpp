#include "ryforeign/RyForeignMorphs.h"

#include "rycore/io/gltf/document/RyGltfDocument.h"
#include "ryforeign/RyForeignText.h"

#include <nlohmann/json.hpp>

#include <assimp/scene.h>

#include <algorithm>
#include <cmath>

QString RyForeignMorphs::nameOf(const aiMesh &mesh, unsigned morph)
{
    const QString name = ryForeignText(mesh.mAnimMeshes[morph]->mName);
    return name.isEmpty() ? QStringLiteral("Morph %1").arg(morph + 1) : name;
}

QStringList RyForeignMorphs::namesOf(const RyForeignInput &input, const aiNode &node)
{
    QStringList names;
    for (unsigned m = 0; m < node.mNumMeshes; ++m) {
        const aiMesh &mesh = *input.scene->mMeshes[node.mMeshes[m]];
        for (unsigned morph = 0; morph < mesh.mNumAnimMeshes; ++morph) {
            if (const QString name = nameOf(mesh, morph); !names.contains(name))
                names.append(name);
        }
    }
    return names;
}

RyForeignMorphs::RyForeignMorphs(const RyForeignInput &input, RyGltfDocument &document, const aiNode &node)
    : m_input(input), m_document(document), m_names(namesOf(input, node))
{
    // The importers' library says 1 of every morph that is alone in its channel.
    for (const QString &name : m_names)
        m_values.push_back(input.morphValues.value(name, 0.0));
}

void RyForeignMorphs::writeTargets(int mesh, int primitive, const aiMesh &source,
                                   const std::vector<std::uint32_t> &firsts)
{
    if (m_names.isEmpty())
        return;
    std::vector<std::vector<std::pair<std::string, int>>> targets(size_t(m_names.size()));
    std::vector<float> deltas;
    const auto differences = [&](const aiVector3D *to, const aiVector3D *from) {
        deltas.clear();
        deltas.reserve(3 * firsts.size());
        for (const std::uint32_t corner : firsts) {
            const aiVector3D delta = to[corner] - from[corner];
            for (const ai_real part : {delta.x, delta.y, delta.z})
                deltas.push_back(std::isfinite(part) ? float(part) : 0.0f);
        }
    };
    for (unsigned morph = 0; morph < source.mNumAnimMeshes; ++morph) {
        const aiAnimMesh &shape = *source.mAnimMeshes[morph];
        if (!shape.mVertices || shape.mNumVertices != source.mNumVertices)
            continue;
        auto &target = targets[size_t(m_names.indexOf(nameOf(source, morph)))];
        if (!target.empty())
            continue;
        differences(shape.mVertices, source.mVertices);
        target.emplace_back("POSITION", addDeltas(deltas));
    }
    deltas.assign(3 * firsts.size(), 0.0f);
    for (auto &target : targets) {
        if (target.empty())
            target.emplace_back("POSITION", addDeltas(deltas));
    }
    m_document.setTargets(mesh, primitive, targets);
}

int RyForeignMorphs::addDeltas(const std::vector<float> &deltas)
{
    constexpr int ForVertices = 34962;
    if (std::any_of(deltas.begin(), deltas.end(), [](float number) { return number != 0.0f; }))
        return m_document.addFloatAccessor(deltas, 3, ForVertices, true);
    const auto [zeros, isNew] = m_zeros.emplace(deltas.size(), -1);
    if (isNew)
        zeros->second = m_document.addFloatAccessor(deltas, 3, ForVertices, true);
    return zeros->second;
}

void RyForeignMorphs::writeNames(int mesh)
{
    if (m_names.isEmpty())
        return;
    nlohmann::ordered_json &entry = m_document.json()["meshes"][size_t(mesh)];
    nlohmann::ordered_json names = nlohmann::ordered_json::array();
    for (const QString &name : m_names)
        names.push_back(name.toStdString());
    entry["weights"] = m_values;
    entry["extras"]["targetNames"] = std::move(names);
}
