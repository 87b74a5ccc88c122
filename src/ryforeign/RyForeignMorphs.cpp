#include "ryforeign/RyForeignMorphs.h"

#include "rycore/io/gltf/document/RyGltfDocument.h"

#include <nlohmann/json.hpp>

#include <assimp/scene.h>

#include <algorithm>
#include <cmath>

namespace {

bool isMoving(const std::vector<float> &deltas)
{
    return std::any_of(deltas.begin(), deltas.end(), [](float number) { return number != 0.0f; });
}

/// The shapes of such a mesh are what is added to it, those of others where it ends up.
bool isRelative(const aiMesh &mesh)
{
    return mesh.mMethod == aiMorphingMethod_MORPH_RELATIVE;
}

/// A normal of any length, as it is written.
aiVector3D direction(aiVector3D normal)
{
    const auto length = normal.Length();
    return std::isfinite(length) && length > 1e-6f ? normal / length : aiVector3D(0, 1, 0);
}

void append(const aiVector3D &delta, float noise, std::vector<float> &deltas)
{
    const bool isNoise = std::abs(delta.x) <= noise && std::abs(delta.y) <= noise && std::abs(delta.z) <= noise;
    for (const ai_real part : {delta.x, delta.y, delta.z})
        deltas.push_back(std::isfinite(part) && !isNoise ? float(part) : 0.0f);
}

} // namespace

RyForeignMorphs::RyForeignMorphs(const RyForeignInput &input, RyGltfDocument &document, const aiNode &node)
    : m_input(input), m_document(document), m_plan(input, node)
{}

std::vector<float> RyForeignMorphs::positionsOf(const aiMesh &source, int shape,
                                                const std::vector<std::uint32_t> &firsts) const
{
    if (shape < 0 || !source.mAnimMeshes[shape]->mVertices ||
        source.mAnimMeshes[shape]->mNumVertices != source.mNumVertices) {
        return std::vector<float>(3 * firsts.size(), 0.0f);
    }
    const aiVector3D *to = source.mAnimMeshes[shape]->mVertices;
    const bool isDelta = isRelative(source);
    std::vector<float> deltas;
    deltas.reserve(3 * firsts.size());
    for (const std::uint32_t corner : firsts)
        append(isDelta ? to[corner] : to[corner] - source.mVertices[corner], 0.0f, deltas);
    return deltas;
}

std::vector<float> RyForeignMorphs::normalsOf(const aiMesh &source, int shape,
                                              const std::vector<std::uint32_t> &firsts) const
{
    if (shape < 0 || !source.mNormals || !source.mAnimMeshes[shape]->mNormals ||
        source.mAnimMeshes[shape]->mNumVertices != source.mNumVertices) {
        return std::vector<float>(3 * firsts.size(), 0.0f);
    }
    constexpr float noise = 1e-6f; // of normals that were brought to length 1 once more
    const aiVector3D *to = source.mAnimMeshes[shape]->mNormals;
    const bool isDelta = isRelative(source);
    std::vector<float> deltas;
    deltas.reserve(3 * firsts.size());
    for (const std::uint32_t corner : firsts) {
        const aiVector3D delta = isDelta ? to[corner] : direction(to[corner]) - direction(source.mNormals[corner]);
        append(delta, noise, deltas);
    }
    return deltas;
}

void RyForeignMorphs::writeTargets(int mesh, int primitive, const aiMesh &source, unsigned number,
                                   const std::vector<std::uint32_t> &firsts)
{
    if (m_plan.morphs.empty())
        return;
    std::vector<std::vector<float>> normals;
    bool hasNormals = false;
    for (size_t morph = 0; morph < m_plan.morphs.size(); ++morph) {
        normals.push_back(normalsOf(source, m_plan.shapeOf(number, morph), firsts));
        hasNormals = hasNormals || isMoving(normals.back());
    }
    std::vector<std::vector<std::pair<std::string, int>>> targets(m_plan.morphs.size());
    for (size_t morph = 0; morph < targets.size(); ++morph) {
        targets[morph].emplace_back("POSITION", addDeltas(positionsOf(source, m_plan.shapeOf(number, morph), firsts)));
        if (hasNormals) // all targets hold the same
            targets[morph].emplace_back("NORMAL", addDeltas(normals[morph]));
    }
    m_document.setTargets(mesh, primitive, targets);
}

int RyForeignMorphs::addDeltas(const std::vector<float> &deltas)
{
    constexpr int ForVertices = 34962;
    if (isMoving(deltas))
        return m_document.addFloatAccessor(deltas, 3, ForVertices, true);
    const auto [zeros, isNew] = m_zeros.emplace(deltas.size(), -1);
    if (isNew)
        zeros->second = m_document.addFloatAccessor(deltas, 3, ForVertices, true);
    return zeros->second;
}

void RyForeignMorphs::writeNames(int mesh, const QString &name)
{
    if (m_plan.morphs.empty())
        return;
    nlohmann::ordered_json &entry = m_document.json()["meshes"][size_t(mesh)];
    nlohmann::ordered_json names = nlohmann::ordered_json::array();
    nlohmann::ordered_json values = nlohmann::ordered_json::array();
    for (const RyForeignMorphPlan::Morph &morph : m_plan.morphs) {
        names.push_back(morph.name.toStdString());
        values.push_back(morph.value);
    }
    entry["weights"] = std::move(values);
    entry["extras"]["targetNames"] = std::move(names);
    if (m_plan.inBetweens > 0)
        m_input.say(QStringLiteral("%1 shapes that \"%2\" passes on its way to morphs are left out; a morph moves in a "
                                   "straight line")
                        .arg(m_plan.inBetweens)
                        .arg(name));
    if (m_plan.repeated > 0)
        m_input.say(
            QStringLiteral("\"%1\" has morphs of one name; %2 of them got numbers").arg(name).arg(m_plan.repeated));
    if (m_input.isText)
        m_input.say(
            QStringLiteral("The file is in text form, of which the values of morphs are not read: the morphs of "
                           "\"%1\" start at 0. Binary FBX keeps them")
                .arg(name));
}
