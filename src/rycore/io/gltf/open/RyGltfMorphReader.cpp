#include "rycore/io/gltf/open/RyGltfMorphReader.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/io/gltf/document/RyGltfDocument.h"
#include "rycore/io/gltf/document/RyGltfFloats.h"
#include "rycore/io/gltf/open/RyGltfNames.h"
#include "rycore/scene/RyMeshPart.h"
#include "rycore/scene/RyShape.h"
#include "rycore/scene/node/RyNodeLookup.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double Farthest = 1e9; // centimetres, as for positions

RyGltfLinear linearOf(const RyAffine &map)
{
    RyGltfLinear linear;
    for (size_t row = 0; row < 3; ++row)
        std::copy_n(map.m[row], 3, linear[row].begin());
    return linear;
}

void apply(const RyGltfLinear &linear, double (&delta)[3])
{
    const double from[3] = {delta[0], delta[1], delta[2]};
    for (size_t column = 0; column < 3; ++column)
        delta[column] = from[0] * linear[0][column] + from[1] * linear[1][column] + from[2] * linear[2][column];
}

/// What a node says of its morphs, or else its mesh.
double startValue(const RyGltfModel &model, const RyGltfMorphSource::Target &target)
{
    const std::vector<double> &ofNode = model.nodes[size_t(target.node)].weights;
    const std::vector<double> &weights = ofNode.empty() ? model.meshes[size_t(target.mesh)].weights : ofNode;
    return size_t(target.number) < weights.size() ? weights[size_t(target.number)] : 0.0;
}

} // namespace

std::vector<RyGltfMorphReader::Key> RyGltfMorphReader::keysOf(int mesh)
{
    const auto known = m_keys.find(mesh);
    if (known != m_keys.end())
        return known->second;
    const RyGltfMesh &each = m_document.model().meshes[size_t(mesh)];
    const size_t count = each.targetCount();
    std::vector<Key> keys;
    std::map<QString, int> before;
    for (size_t i = 0; i < count; ++i) {
        const QString name = i < each.targetNames.size() ? each.targetNames[i] : QString();
        keys.push_back(name.isEmpty() ? Key(QString(), mesh, int(i)) : Key(name, -1, before[name]++));
    }
    return m_keys[mesh] = keys;
}

bool RyGltfMorphReader::isUsable(int accessor)
{
    const auto [known, isNew] = m_usable.try_emplace(accessor, true);
    if (isNew && !m_document.hasFiniteNumbers(accessor)) {
        known->second = false;
        say(QStringLiteral("accessors[%1]: the numbers of a morph are not finite, and it is left out").arg(accessor));
    }
    return known->second;
}

void RyGltfMorphReader::addPart(const RyGltfPartSource &source, const RyMeshPart &part, const RyAffine &toFigure,
                                const std::vector<RyGltfLinear> *further)
{
    const std::vector<int> &accessors =
        m_document.model().meshes[size_t(source.mesh)].primitives[size_t(source.primitive)].morphPositions;
    if (accessors.empty() || part.vertexOfSplit.empty())
        return;
    const std::vector<Key> keys = keysOf(source.mesh);
    for (size_t i = 0; i < accessors.size(); ++i) {
        if (accessors[i] < 0 || !isUsable(accessors[i]))
            continue;
        const auto [place, isNew] = m_places.try_emplace(keys[i], m_drafts.size());
        if (isNew) {
            const QString &name = std::get<0>(keys[i]);
            m_drafts.push_back({name.isEmpty() ? QStringLiteral("Morph %1").arg(i + 1) : name, {}, {}});
        }
        Draft &draft = m_drafts[place->second];
        if (addDeltas(accessors[i], part, toFigure, further, draft)) {
            addTarget({source.node, source.mesh, int(i)}, draft);
        } else {
            say(QStringLiteral("accessors[%1]: a morph moves vertices too far out, and it is left out")
                    .arg(accessors[i]));
        }
    }
}

bool RyGltfMorphReader::addDeltas(int accessor, const RyMeshPart &part, const RyAffine &toFigure,
                                  const std::vector<RyGltfLinear> *further, Draft &draft)
{
    const RyGltfFloats floats(m_document, accessor);
    if (floats.count() != part.vertexOfSplit.size())
        return false;
    const RyGltfLinear linear = linearOf(toFigure);
    const size_t before = draft.deltas.size();
    for (size_t split = 0; split < floats.count(); ++split) {
        const float *from = floats.data() + 3 * split;
        if (from[0] == 0.0f && from[1] == 0.0f && from[2] == 0.0f)
            continue;
        const int vertex = part.vertexOfSplit[split];
        double delta[3] = {double(from[0]), double(from[1]), double(from[2])};
        apply(linear, delta);
        if (further)
            apply((*further)[size_t(vertex)], delta);
        for (const double number : delta) {
            if (!(std::abs(number) <= Farthest)) {
                draft.deltas.resize(before);
                return false;
            }
        }
        const RyVec3 rounded = {float(delta[0]), float(delta[1]), float(delta[2])};
        if (!(rounded == RyVec3()))
            draft.deltas.emplace_back(vertex, rounded);
    }
    return true;
}

void RyGltfMorphReader::addTarget(const RyGltfMorphSource::Target &target, Draft &draft)
{
    std::vector<RyGltfMorphSource::Target> &targets = draft.source.targets;
    if (std::find(targets.begin(), targets.end(), target) != targets.end())
        return; // of another primitive
    const float value = float(startValue(m_document.model(), target));
    if (targets.empty()) {
        draft.source.value = value;
    } else if (value != draft.source.value) {
        say(QStringLiteral("Meshes show the morph \"%1\" by %2 and by %3; all are shown by the first")
                .arg(draft.name)
                .arg(double(draft.source.value))
                .arg(double(value)));
    }
    targets.push_back(target);
}

std::vector<RyGltfMorphSource> RyGltfMorphReader::addTo(RyShape &shape, const RyNode &node)
{
    RyGltfNames names;
    for (const RyFloatProperty *property : RyNodeLookup::values(node, false))
        names.take(property->getName());
    std::vector<RyGltfMorphSource> sources;
    for (Draft &draft : m_drafts) {
        if (draft.source.targets.empty())
            continue;
        // Splits of a vertex agree; the first one counts.
        std::stable_sort(draft.deltas.begin(), draft.deltas.end(),
                         [](const auto &a, const auto &b) { return a.first < b.first; });
        std::vector<int> vertices;
        std::vector<RyVec3> deltas;
        for (const auto &[vertex, delta] : draft.deltas) {
            if (!vertices.empty() && vertices.back() == vertex)
                continue;
            vertices.push_back(vertex);
            deltas.push_back(delta);
        }
        auto *morph = new RyMorph(names.take(draft.name), std::move(vertices), std::move(deltas));
        RyFloatProperty *control = morph->getValueControl();
        control->setMin(std::min(0.0f, draft.source.value));
        control->setMax(std::max(1.0f, draft.source.value));
        control->setValue(draft.source.value);
        shape.addMorph(morph);
        draft.source.morph = morph;
        sources.push_back(std::move(draft.source));
    }
    m_drafts.clear();
    return sources;
}
