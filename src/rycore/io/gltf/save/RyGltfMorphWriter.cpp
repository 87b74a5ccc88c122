#include "rycore/io/gltf/save/RyGltfMorphWriter.h"

#include "rycore/io/gltf/document/RyGltfCursor.h"
#include "rycore/io/gltf/document/RyGltfDocument.h"
#include "rycore/scene/RyMeshPart.h"
#include "rycore/scene/RyMorph.h"
#include "rycore/scene/RyShape.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>

using Json = nlohmann::ordered_json;

namespace {

constexpr int ForVertices = 34962;

/// By the linear part alone.
void mapDelta(const RyAffine &map, const double (&from)[3], double (&to)[3])
{
    for (int column = 0; column < 3; ++column)
        to[column] = from[0] * map.m[0][column] + from[1] * map.m[1][column] + from[2] * map.m[2][column];
}

/// Of each split vertex of a part, in figure space.
std::vector<RyVec3> splitDeltas(const RyMorph &morph, const RyMeshPart &part)
{
    const auto most = std::max_element(part.vertexOfSplit.begin(), part.vertexOfSplit.end());
    std::vector<RyVec3> ofVertices(most == part.vertexOfSplit.end() ? 0 : size_t(*most) + 1);
    for (size_t i = 0; i < morph.vertices().size() && size_t(morph.vertices()[i]) < ofVertices.size(); ++i)
        ofVertices[size_t(morph.vertices()[i])] = morph.deltas()[i];
    std::vector<RyVec3> deltas;
    deltas.reserve(part.vertexOfSplit.size());
    for (const int vertex : part.vertexOfSplit)
        deltas.push_back(ofVertices[size_t(vertex)]);
    return deltas;
}

} // namespace

RyGltfMorphWriter::RyGltfMorphWriter(RyGltfDocument &document, const RyShape &shape, const RyAffine &toFigure)
    : m_document(document), m_shape(shape), m_toFigure(toFigure), m_toMesh(toFigure.inverse())
{}

float RyGltfMorphWriter::valueOf(const RyMorph &morph)
{
    return morph.getValueControl() ? readable(morph.getValueControl()->getValue()) : 0.0f;
}

float RyGltfMorphWriter::readable(float value)
{
    static const float largest = std::nextafter(float(RyGltfCursor::Largest), 0.0f);
    return std::clamp(value, -largest, largest);
}

int RyGltfMorphWriter::numberIn(const RyGltfFigureSource &known, const RyMorph &morph, int node)
{
    for (const RyGltfMorphSource &source : known.morphs) {
        if (source.morph != &morph)
            continue;
        for (const RyGltfMorphSource::Target &target : source.targets) {
            if (target.node == node)
                return target.number;
        }
    }
    return -1;
}

RyGltfMorphWriter::Target RyGltfMorphWriter::targetAt(int mesh, int primitive, int number) const
{
    const Json &json = std::as_const(m_document).json()["meshes"][size_t(mesh)]["primitives"][size_t(primitive)];
    Target target;
    const auto targets = json.find("targets");
    if (number < 0 || targets == json.end() || size_t(number) >= targets->size())
        return target;
    for (const auto &[name, accessor] : (*targets)[size_t(number)].items()) {
        if (accessor.is_number_integer() && accessor >= 0 && accessor < m_document.model().accessors.size())
            target.emplace_back(name, accessor.get<int>());
    }
    return target;
}

std::vector<float> RyGltfMorphWriter::deltasOf(const RyMorph &morph, const RyMeshPart &part) const
{
    std::vector<float> deltas;
    deltas.reserve(3 * part.vertexOfSplit.size());
    for (const RyVec3 &delta : splitDeltas(morph, part)) {
        const double from[3] = {double(delta.x), double(delta.y), double(delta.z)};
        double to[3];
        mapDelta(m_toMesh, from, to);
        for (const double number : to)
            deltas.push_back(float(number));
    }
    return deltas;
}

/// Whether a reader makes the morph of the accessor.
bool RyGltfMorphWriter::isSame(int accessor, const RyMorph &morph, const RyMeshPart &part) const
{
    const std::vector<float> deltas = m_document.readFloats(accessor);
    const std::vector<RyVec3> wanted = splitDeltas(morph, part);
    if (deltas.size() != 3 * wanted.size())
        return false;
    for (size_t split = 0; split < wanted.size(); ++split) {
        const double from[3] = {double(deltas[3 * split]), double(deltas[3 * split + 1]),
                                double(deltas[3 * split + 2])};
        double to[3];
        mapDelta(m_toFigure, from, to);
        if (!(RyVec3(float(to[0]), float(to[1]), float(to[2])) == wanted[split]))
            return false;
    }
    return true;
}

int RyGltfMorphWriter::addDeltas(const RyMorph &morph, const RyMeshPart &part)
{
    const std::vector<float> deltas = deltasOf(morph, part);
    if (std::any_of(deltas.begin(), deltas.end(), [](float number) { return number != 0.0f; }))
        return m_document.addFloatAccessor(deltas, 3, ForVertices, true);
    const auto [zeros, isNew] = m_zeros.try_emplace(part.vertexOfSplit.size(), -1);
    if (isNew)
        zeros->second = m_document.addFloatAccessor(deltas, 3, ForVertices, true);
    return zeros->second;
}

void RyGltfMorphWriter::writeTargets(int mesh, int primitive, const RyMeshPart &part, const Origin *origin)
{
    if (part.vertexOfSplit.empty())
        return;
    std::vector<Target> targets;
    for (const RyMorph *morph : m_shape.getMorphs()) {
        Target target;
        if (origin)
            target = targetAt(mesh, primitive, numberIn(origin->figure, *morph, origin->part.node));
        for (auto &[name, accessor] : target)
            accessor = origin->change.turnDeltas(name, accessor, mesh, primitive, part);
        const auto position = std::find_if(target.begin(), target.end(),
                                           [](const auto &attribute) { return attribute.first == "POSITION"; });
        if (position == target.end())
            target.insert(target.begin(), {"POSITION", addDeltas(*morph, part)});
        else if (!isSame(position->second, *morph, part))
            position->second = addDeltas(*morph, part);
        targets.push_back(std::move(target));
    }
    m_document.setTargets(mesh, primitive, targets);
}

void RyGltfMorphWriter::renewTargets(int mesh, int primitive, const RyMeshPart &part, const Origin &origin)
{
    const size_t count = m_document.model().meshes[size_t(mesh)].primitives[size_t(primitive)].morphPositions.size();
    std::vector<Target> targets, before;
    for (size_t i = 0; i < count; ++i)
        before.push_back(targetAt(mesh, primitive, int(i)));
    targets = before;
    for (Target &target : targets) {
        for (auto &[name, accessor] : target)
            accessor = origin.change.turnDeltas(name, accessor, mesh, primitive, part);
    }
    for (const RyMorph *morph : m_shape.getMorphs()) {
        const int number = numberIn(origin.figure, *morph, origin.part.node);
        if (number < 0 || size_t(number) >= count)
            continue;
        for (auto &[name, accessor] : targets[size_t(number)]) {
            if (name == "POSITION" && !isSame(accessor, *morph, part))
                accessor = m_document.replaceFloats(accessor, deltasOf(*morph, part));
        }
    }
    if (targets != before)
        m_document.setTargets(mesh, primitive, targets);
}

void RyGltfMorphWriter::appendTargets(int mesh, int primitive, const RyMeshPart &part,
                                      const std::vector<const RyMorph *> &morphs)
{
    const size_t count = m_document.model().meshes[size_t(mesh)].primitives[size_t(primitive)].morphPositions.size();
    std::vector<Target> targets;
    for (size_t i = 0; i < count; ++i)
        targets.push_back(targetAt(mesh, primitive, int(i)));
    for (const RyMorph *morph : morphs)
        targets.push_back({{"POSITION", addDeltas(*morph, part)}});
    m_document.setTargets(mesh, primitive, targets);
}

void RyGltfMorphWriter::writeValues(int mesh)
{
    Json &json = m_document.json()["meshes"][size_t(mesh)];
    json.erase("weights");
    if (m_shape.getMorphs().empty())
        return;
    Json names = Json::array();
    for (const RyMorph *morph : m_shape.getMorphs()) {
        json["weights"].push_back(valueOf(*morph));
        names.push_back(morph->getName().toStdString());
    }
    json["extras"]["targetNames"] = std::move(names);
}
