#include "rycore/io/gltf/save/RyGltfMeshPatch.h"

#include "rycore/io/gltf/document/RyGltfDocument.h"
#include "rycore/io/gltf/extras/RyTreeExtras.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <set>

void RyGltfMeshPatch::writeInfluences(const std::vector<Part> &parts, const std::vector<int> &places)
{
    RyGltfInfluenceWriter::Part influences;
    influences.places = places;
    bool any = false;
    for (const Part &part : parts) {
        if (!part.isWritten)
            continue;
        any = true;
        influences.sets = std::max(influences.sets, m_writer.setsNeeded(part.vertexOfSplit));
    }
    if (!any)
        return;
    const std::vector<int> tags = tellApart(parts);
    std::set<std::pair<int, int>> done; // several nodes may show one mesh
    std::vector<Sharers> groups;
    Places known;
    for (const Part &part : parts) {
        if (!part.isWritten || part.vertexOfSplit->empty() || !done.insert({part.mesh, part.primitive}).second)
            continue;
        addToSharers(groups, known, part);
        writeTags(part, tags);
    }
    for (const Sharers &sharers : groups)
        writeSharers(sharers, influences);
}

void RyGltfMeshPatch::addToSharers(std::vector<Sharers> &groups, Places &known, const Part &part) const
{
    const RyGltfPrimitive &primitive = m_document.model().meshes[size_t(part.mesh)].primitives[size_t(part.primitive)];
    const auto [place, isNew] =
        known.try_emplace(Places::key_type(primitive.joints, primitive.weights, *part.vertexOfSplit), groups.size());
    if (isNew)
        groups.push_back({primitive.joints, primitive.weights, {part}});
    else
        groups[place->second].parts.push_back(part);
}

void RyGltfMeshPatch::writeSharers(const Sharers &sharers, RyGltfInfluenceWriter::Part influences)
{
    influences.vertexOfSplit = sharers.parts.front().vertexOfSplit;
    std::vector<std::pair<std::string, int>> attributes;
    size_t set = 0;
    for (const auto &[joints, weights] : m_writer.numbersOf(influences)) {
        const bool isThere = set < sharers.joints.size();
        const std::string number = std::to_string(set);
        const int users = int(sharers.parts.size());
        attributes.emplace_back("JOINTS_" + number,
                                m_document.replaceUints(isThere ? sharers.joints[set] : -1, joints, false, users));
        attributes.emplace_back("WEIGHTS_" + number,
                                m_document.replaceUints(isThere ? sharers.weights[set] : -1, weights, true, users));
        ++set;
    }
    for (const Part &part : sharers.parts)
        m_document.setInfluences(part.mesh, part.primitive, attributes);
}

std::vector<int> RyGltfMeshPatch::tellApart(const std::vector<Part> &parts) const
{
    std::vector<int> tags(m_positions.size(), -1);
    for (const Part &part : parts) {
        for (const int vertex : *part.vertexOfSplit)
            tags[size_t(vertex)] = 0;
    }
    const size_t capacity = std::bit_ceil(2 * m_positions.size() + 16);
    std::vector<int> table(capacity, -1);
    const auto same = [this](int a, int b) {
        const auto ofA = m_influences.of(a);
        const auto ofB = m_influences.of(b);
        return std::memcmp(&m_positions[size_t(a)], &m_positions[size_t(b)], sizeof(RyVec3)) == 0 &&
               (ofA.empty() || ofB.empty() || // held by a joint in the file
                std::equal(ofA.begin(), ofA.end(), ofB.begin(), ofB.end(),
                           [](const auto &x, const auto &y) { return x.bone == y.bone && x.weight == y.weight; }));
    };
    for (size_t v = 0; v < tags.size(); ++v) {
        if (tags[v] < 0)
            continue;
        std::uint32_t bits[3];
        std::memcpy(bits, &m_positions[v], sizeof bits);
        std::uint64_t hash = (bits[0] ^ (std::uint64_t(bits[1]) << 32) ^ 0x9e3779b97f4a7c15ull) * 0xff51afd7ed558ccdull;
        hash = (std::rotl(hash, 29) ^ bits[2]) * 0xc4ceb9fe1a85ec53ull;
        size_t slot = size_t(hash >> 20) & (capacity - 1);
        for (; table[slot] >= 0; slot = (slot + 1) & (capacity - 1))
            tags[v] += same(table[slot], int(v));
        table[slot] = int(v);
    }
    return tags;
}

void RyGltfMeshPatch::writeTags(const Part &part, const std::vector<int> &tags)
{
    std::vector<int> list; // split vertex, tag
    std::vector<int> free;
    for (size_t split = 0; split < part.vertexOfSplit->size(); ++split) {
        if (m_influences.of((*part.vertexOfSplit)[split]).empty())
            free.push_back(int(split));
        const int tag = tags[size_t((*part.vertexOfSplit)[split])];
        if (tag > 0)
            list.insert(list.end(), {int(split), tag});
    }
    RyTreeExtras::storeApart(m_document, part.mesh, part.primitive, list);
    RyTreeExtras::storeFree(m_document, part.mesh, part.primitive, free);
}
