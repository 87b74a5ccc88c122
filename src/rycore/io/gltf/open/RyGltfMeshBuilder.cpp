#include "rycore/io/gltf/open/RyGltfMeshBuilder.h"

#include "rycore/io/gltf/document/RyGltfDocument.h"
#include "rycore/io/gltf/extras/RyTreeExtras.h"
#include "rycore/mesh/RyWeightQuantizer.h"
#include "rycore/skin/RyParallel.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <unordered_map>
#include <unordered_set>

/// A primitive's data as welding needs it: the file's own bytes where they lie packed, otherwise copies.
struct RyGltfMeshBuilder::Part
{
    struct InfluenceSet
    {
        const unsigned char *joints = nullptr;
        int jointSize = 0; // 1 or 2 bytes
        const float *weights = nullptr;
        std::vector<std::uint16_t> jointCopy;
        std::vector<float> weightCopy;
    };

    size_t vertexCount = 0;
    const float *positions = nullptr;
    std::vector<float> positionCopy;
    const float *normals = nullptr;
    std::vector<float> normalCopy;
    std::vector<InfluenceSet> sets;
    std::vector<std::vector<float>> morphs;
    std::vector<int> bonesOfJoints;
    RyAffine toFigure;
    std::unordered_map<int, int> apart; // numbers of splits that are not the vertices they look like

    std::unordered_set<int> free; // splits that nothing moves, whatever holds them in the file

    /// The file has such a vertex held by one joint alone; otherwise somebody gave it weights since.
    bool isFree(size_t split) const
    {
        if (free.empty() || sets.empty() || !free.count(int(split)))
            return false;
        double sum = 0.0;
        for (const InfluenceSet &set : sets)
            sum += double(set.weights[4 * split] + set.weights[4 * split + 1] + set.weights[4 * split + 2] +
                          set.weights[4 * split + 3]);
        return double(sets.front().weights[4 * split]) == sum;
    }
    int apartOf(int split) const
    {
        const auto found = apart.empty() ? apart.end() : apart.find(split);
        return found == apart.end() ? 0 : found->second;
    }
    const float *position(int split) const { return positions + 3 * size_t(split); }
    /// Whether two split vertices of parts of one class are the same vertex.
    bool same(int split, const Part &other, int otherSplit) const
    {
        if (std::memcmp(position(split), other.position(otherSplit), 12) != 0 || sets.size() != other.sets.size() ||
            !other.morphs.empty() != !morphs.empty() || (&other != this && !morphs.empty()) ||
            apartOf(split) != other.apartOf(otherSplit)) {
            return false;
        }
        for (size_t s = 0; s < sets.size(); ++s) {
            const InfluenceSet &a = sets[s];
            const InfluenceSet &b = other.sets[s];
            const size_t bytes = size_t(4 * a.jointSize);
            if (a.jointSize != b.jointSize ||
                std::memcmp(a.joints + size_t(split) * bytes, b.joints + size_t(otherSplit) * bytes, bytes) != 0 ||
                std::memcmp(a.weights + 4 * size_t(split), b.weights + 4 * size_t(otherSplit), 16) != 0) {
                return false;
            }
        }
        for (const std::vector<float> &morph : morphs) {
            if (std::memcmp(&morph[3 * size_t(split)], &morph[3 * size_t(otherSplit)], 12) != 0)
                return false;
        }
        return true;
    }
};

namespace {

size_t hashPosition(const float *p)
{
    std::uint64_t xy;
    std::uint32_t z;
    std::memcpy(&xy, p, 8);
    std::memcpy(&z, p + 2, 4);
    std::uint64_t hash = (xy ^ 0x9e3779b97f4a7c15ull) * 0xff51afd7ed558ccdull;
    hash = (std::rotl(hash, 29) ^ z) * 0xc4ceb9fe1a85ec53ull;
    return size_t(hash ^ (hash >> 32));
}

} // namespace

RyGltfMeshBuilder::RyGltfMeshBuilder(const RyGltfDocument &document) : m_document(document) {}

RyGltfMeshBuilder::~RyGltfMeshBuilder() = default;

void RyGltfMeshBuilder::addPart(int meshIndex, int primitiveIndex, const QString &name,
                                const std::vector<int> &bonesOfJoints, const RyAffine &toFigure, int weldClass)
{
    const RyGltfPrimitive &primitive = m_document.model().meshes[size_t(meshIndex)].primitives[size_t(primitiveIndex)];
    RyMeshPart result;
    result.name = name;
    result.look = primitive.material;
    result.firstFacet = int(facets.size());
    if (primitive.positions >= 0) {
        if (weldClass != m_weldClass) {
            m_weldClass = weldClass;
            m_classParts.clear();
            m_origins.clear();
            m_table.clear();
            m_firstOfClass = int(positions.size());
        }
        auto part = std::make_unique<Part>();
        part->bonesOfJoints = bonesOfJoints;
        part->toFigure = toFigure;
        readAttributes(primitive, *part);
        if (primitive.texcoords >= 0) {
            result.uvs = m_document.readFloats(primitive.texcoords);
            result.uvs.resize(part->vertexCount * 2, 0.0f);
        }
        const std::vector<int> apart = RyTreeExtras::findApart(m_document, meshIndex, primitiveIndex);
        for (size_t i = 0; i + 1 < apart.size(); i += 2)
            part->apart[apart[i]] = apart[i + 1];
        for (const int split : RyTreeExtras::findFree(m_document, meshIndex, primitiveIndex))
            part->free.insert(split);
        Part &added = *part;
        m_classParts.push_back(std::move(part));
        const int firstVertex = int(positions.size());
        weld(added, result);
        shareNormals(added, firstVertex, result);
        readInfluences(firstVertex);
        readFacets(primitive, int(added.vertexCount), result);
    }
    result.facetCount = int(facets.size()) - result.firstFacet;
    parts.parts.push_back(std::move(result));
}

void RyGltfMeshBuilder::readAttributes(const RyGltfPrimitive &primitive, Part &part)
{
    const RyGltfModel &model = m_document.model();
    const auto floats = [&](int accessor, int components, std::vector<float> &copy) -> const float * {
        const RyGltfAccessor &a = model.accessors[size_t(accessor)];
        const std::span<const unsigned char> bytes = m_document.packedBytes(accessor);
        if (a.componentType == 5126 && a.componentCount == components && !bytes.empty() &&
            reinterpret_cast<std::uintptr_t>(bytes.data()) % alignof(float) == 0) {
            return reinterpret_cast<const float *>(bytes.data());
        }
        copy = m_document.readFloats(accessor);
        copy.resize(part.vertexCount * size_t(components), 0.0f);
        return copy.data();
    };
    part.vertexCount = size_t(model.accessors[size_t(primitive.positions)].count);
    part.positions = floats(primitive.positions, 3, part.positionCopy);
    if (primitive.normals >= 0)
        part.normals = floats(primitive.normals, 3, part.normalCopy);
    for (const int morph : primitive.morphPositions) {
        if (morph < 0)
            continue;
        part.morphs.push_back(m_document.readFloats(morph));
        part.morphs.back().resize(part.vertexCount * 3, 0.0f);
    }
    if (part.bonesOfJoints.empty())
        return;
    part.sets.resize(std::min(primitive.joints.size(), primitive.weights.size()));
    for (size_t s = 0; s < part.sets.size(); ++s) {
        Part::InfluenceSet &set = part.sets[s];
        const RyGltfAccessor &a = model.accessors[size_t(primitive.joints[s])];
        const std::span<const unsigned char> bytes = m_document.packedBytes(primitive.joints[s]);
        if (!bytes.empty() && (a.componentType == 5121 || a.componentType == 5123)) {
            set.joints = bytes.data();
            set.jointSize = a.componentType == 5121 ? 1 : 2;
        } else {
            for (const std::uint32_t joint : m_document.readUints(primitive.joints[s]))
                set.jointCopy.push_back(
                    std::uint16_t(std::min<std::uint32_t>(joint, std::numeric_limits<std::uint16_t>::max())));
            set.jointCopy.resize(part.vertexCount * 4, 0);
            set.joints = reinterpret_cast<const unsigned char *>(set.jointCopy.data());
            set.jointSize = 2;
        }
        set.weights = floats(primitive.weights[s], 4, set.weightCopy);
    }
}

void RyGltfMeshBuilder::weld(Part &part, RyMeshPart &result)
{
    const size_t count = part.vertexCount;
    const int thisPart = int(m_classParts.size()) - 1;
    const size_t capacity = std::bit_ceil(std::max<size_t>(16, 2 * (m_origins.size() + count)));
    if (m_table.size() < capacity) {
        m_table.assign(capacity, -1);
        for (size_t known = 0; known < m_origins.size(); ++known) {
            const Part &from = *m_classParts[size_t(m_origins[known].part)];
            size_t slot = hashPosition(from.position(m_origins[known].split)) & (capacity - 1);
            while (m_table[slot] >= 0)
                slot = (slot + 1) & (capacity - 1);
            m_table[slot] = int(known);
        }
    }
    const size_t mask = m_table.size() - 1;
    m_origins.reserve(m_origins.size() + count);
    result.vertexOfSplit.resize(count);
    for (size_t v = 0; v < count; ++v) {
        const int split = int(v);
        size_t slot = hashPosition(part.position(split)) & mask;
        int local = m_table[slot];
        while (local >= 0) {
            const Origin &origin = m_origins[size_t(local)];
            if (part.same(split, *m_classParts[size_t(origin.part)], origin.split))
                break;
            slot = (slot + 1) & mask;
            local = m_table[slot];
        }
        if (local < 0) {
            local = int(m_origins.size());
            m_table[slot] = local;
            m_origins.push_back({thisPart, split});
        }
        result.vertexOfSplit[v] = m_firstOfClass + local;
    }
}

void RyGltfMeshBuilder::shareNormals(const Part &part, int firstVertex, RyMeshPart &result)
{
    // Splits of one vertex that agree in their normal share a smooth one. A vertex that this part brought is met first
    // at its own split; the few others go into chains.
    const size_t count = part.vertexCount;
    result.normalOfSplit.resize(count);
    const int first = m_firstOfClass;
    const bool allNew =
        result.vertexOfSplit.empty() || m_firstOfClass + int(m_origins.size()) - firstVertex == int(count);
    if (allNew) {
        for (size_t v = 0; v < count; ++v)
            result.normalOfSplit[v] = parts.normalCount++;
        return;
    }
    std::vector<int> latest(m_origins.size(), -1);
    std::vector<int> previous(count, -1);
    for (size_t v = 0; v < count; ++v) {
        int &last = latest[size_t(result.vertexOfSplit[v] - first)];
        int shared = -1;
        for (int other = last; other >= 0 && shared < 0; other = previous[size_t(other)]) {
            if (!part.normals || std::memcmp(part.normals + 3 * size_t(other), part.normals + 3 * v, 12) == 0)
                shared = result.normalOfSplit[size_t(other)];
        }
        result.normalOfSplit[v] = shared >= 0 ? shared : parts.normalCount++;
        previous[v] = last;
        last = int(v);
    }
}

void RyGltfMeshBuilder::readInfluences(int firstVertex)
{
    const Part &part = *m_classParts.back();
    const size_t firstOrigin = size_t(firstVertex - m_firstOfClass);
    const size_t count = m_origins.size() - firstOrigin;
    const int width = int(4 * part.sets.size());
    positions.resize(size_t(firstVertex) + count);
    m_strongest.resize(size_t(firstVertex) + count, -1);
    InfluenceRun run{firstVertex, int(count), width, {}, {}};
    run.bones.resize(count * size_t(width));
    run.weights.resize(count * size_t(width));
    std::atomic<int> dropped{0};

    const int boneLimit = int(part.bonesOfJoints.size());
    RyParallel::forRanges(count, 20000, [&](size_t begin, size_t end) {
        std::vector<double> weights(static_cast<size_t>(width));
        int droppedHere = 0;
        for (size_t i = begin; i < end; ++i) {
            const size_t split = size_t(m_origins[firstOrigin + i].split);
            const double from[3] = {part.positions[3 * split], part.positions[3 * split + 1],
                                    part.positions[3 * split + 2]};
            double at[3];
            part.toFigure.mapPoint(from, at);
            positions[size_t(firstVertex) + i] = {float(at[0]), float(at[1]), float(at[2])};

            quint16 *bones = run.bones.data() + i * size_t(width);
            int used = 0;
            double sum = 0.0;
            const bool isFree = part.isFree(split);
            for (const Part::InfluenceSet &set : part.sets) {
                if (isFree)
                    break;
                for (size_t k = 4 * split; k < 4 * split + 4; ++k) {
                    const double weight = double(set.weights[k]);
                    if (weight == 0.0)
                        continue;
                    std::uint16_t joint = 0;
                    if (set.jointSize == 1)
                        joint = set.joints[k];
                    else
                        std::memcpy(&joint, set.joints + 2 * k, 2);
                    if (!std::isfinite(weight) || weight < 0.0 || joint >= boneLimit) {
                        ++droppedHere;
                        continue;
                    }
                    const quint16 bone = quint16(part.bonesOfJoints[joint]);
                    int place = 0;
                    while (place < used && bones[place] != bone)
                        ++place;
                    if (place == used) {
                        bones[used] = bone;
                        weights[size_t(used++)] = 0.0;
                    }
                    weights[size_t(place)] += weight;
                    sum += weight;
                }
            }
            if (sum > 0.0 && std::isfinite(sum)) {
                const int largest =
                    RyWeightQuantizer::spreadRest(weights.data(), used, sum, run.weights.data() + i * size_t(width));
                m_strongest[size_t(firstVertex) + i] = bones[largest];
            }
        }
        dropped += droppedHere;
    });
    droppedInfluences += dropped;
    if (width > 0 && count > 0)
        m_runs.push_back(std::move(run));
}

void RyGltfMeshBuilder::readFacets(const RyGltfPrimitive &primitive, int vertexCount, RyMeshPart &result)
{
    if (primitive.mode < 4 || primitive.mode > 6)
        return;
    std::vector<std::uint32_t> indices;
    if (primitive.indices >= 0) {
        indices = m_document.readUints(primitive.indices);
    } else {
        indices.resize(size_t(vertexCount));
        for (size_t i = 0; i < indices.size(); ++i)
            indices[i] = std::uint32_t(i);
    }
    const size_t count = indices.size();
    if (primitive.mode != 4) {
        // Strips and fans become plain triangles.
        std::vector<std::uint32_t> triangles;
        for (size_t t = 0; t + 2 < count; ++t) {
            if (primitive.mode == 6)
                triangles.insert(triangles.end(), {indices[0], indices[t + 1], indices[t + 2]});
            else
                triangles.insert(triangles.end(), {indices[t], indices[t + 1 + t % 2], indices[t + 2 - t % 2]});
        }
        indices = std::move(triangles);
    }
    indices.resize(indices.size() / 3 * 3);
    const bool allValid = std::all_of(indices.begin(), indices.end(),
                                      [vertexCount](std::uint32_t index) { return index < unsigned(vertexCount); });
    if (!allValid) {
        std::vector<std::uint32_t> valid;
        for (size_t i = 0; i < indices.size(); i += 3) {
            if (std::all_of(&indices[i], &indices[i] + 3, [&](std::uint32_t v) { return v < unsigned(vertexCount); }))
                valid.insert(valid.end(), &indices[i], &indices[i] + 3);
        }
        indices = std::move(valid);
    }
    const size_t first = facets.size();
    facets.resize(first + indices.size() / 3);
    for (size_t t = 0; t < indices.size() / 3; ++t) {
        for (size_t corner = 0; corner < 3; ++corner)
            facets[first + t].vertices[corner] = result.vertexOfSplit[indices[3 * t + corner]];
    }
    result.triangles = std::move(indices);
}

std::vector<RyGltfMeshBuilder::BoneWeights> RyGltfMeshBuilder::boneWeights(int boneCount) const
{
    std::vector<int> counts(size_t(boneCount), 0);
    for (const InfluenceRun &run : m_runs) {
        for (size_t i = 0; i < run.weights.size(); ++i)
            counts[run.bones[i]] += run.weights[i] != 0;
    }
    std::vector<BoneWeights> result(static_cast<size_t>(boneCount));
    for (size_t bone = 0; bone < result.size(); ++bone) {
        result[bone].vertices.resize(size_t(counts[bone]));
        result[bone].weights.resize(size_t(counts[bone]));
        counts[bone] = 0;
    }
    for (const InfluenceRun &run : m_runs) {
        for (int v = 0; v < run.vertexCount; ++v) {
            for (int slot = 0; slot < run.width; ++slot) {
                const size_t i = size_t(v) * size_t(run.width) + size_t(slot);
                if (run.weights[i] == 0)
                    continue;
                BoneWeights &weights = result[run.bones[i]];
                const size_t at = size_t(counts[run.bones[i]]++);
                weights.vertices[at] = run.firstVertex + v;
                weights.weights[at] = run.weights[i];
            }
        }
    }
    return result;
}
