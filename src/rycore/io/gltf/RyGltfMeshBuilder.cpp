#include "rycore/io/gltf/RyGltfMeshBuilder.h"

#include "rycore/io/gltf/RyGltfDocument.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

namespace {

/// One attribute's bytes, tightly packed: the file's own where they lie so, otherwise a copy as floats or ints.
class PackedAttribute
{
public:
    PackedAttribute(const RyGltfDocument &document, int accessor, size_t bytesPerVertex)
    {
        if (accessor < 0)
            return;
        m_bytes = document.packedBytes(accessor);
        m_stride = bytesPerVertex;
    }
    bool isNull() const { return m_bytes.empty(); }
    const unsigned char *at(size_t vertex) const { return m_bytes.data() + vertex * m_stride; }
    size_t stride() const { return m_stride; }
    void setCopy(std::vector<unsigned char> copy, size_t stride)
    {
        m_copy = std::move(copy);
        m_bytes = m_copy;
        m_stride = stride;
    }

private:
    std::span<const unsigned char> m_bytes;
    std::vector<unsigned char> m_copy;
    size_t m_stride = 0;
};

template<typename T>
std::vector<unsigned char> asBytes(const std::vector<T> &values)
{
    std::vector<unsigned char> bytes(values.size() * sizeof(T));
    if (!bytes.empty())
        std::memcpy(bytes.data(), values.data(), bytes.size());
    return bytes;
}

std::uint64_t hashBytes(const unsigned char *data, size_t size)
{
    std::uint64_t hash = 0x9e3779b97f4a7c15ull;
    while (size >= 8) {
        std::uint64_t word;
        std::memcpy(&word, data, 8);
        hash = (std::rotl(hash, 23) ^ word) * 0xff51afd7ed558ccdull;
        data += 8;
        size -= 8;
    }
    if (size > 0) {
        std::uint64_t word = 0;
        std::memcpy(&word, data, size);
        hash = (std::rotl(hash, 23) ^ word) * 0xff51afd7ed558ccdull;
    }
    return hash ^ (hash >> 32);
}

/// Weights of one vertex as 16-bit numbers that sum to 65535; what rounding leaves goes to the largest.
void quantize(const std::vector<std::pair<int, double>> &influences, std::vector<int> &bones,
              std::vector<quint16> &weights)
{
    double sum = 0.0;
    for (const auto &influence : influences)
        sum += influence.second;
    if (!(sum > 0.0))
        return;
    int total = 0;
    size_t largest = 0;
    const size_t first = bones.size();
    for (size_t i = 0; i < influences.size(); ++i) {
        const int weight = int(std::lround(influences[i].second / sum * 65535.0));
        bones.push_back(influences[i].first);
        weights.push_back(quint16(weight));
        total += weight;
        if (influences[i].second > influences[largest].second)
            largest = i;
    }
    weights[first + largest] = quint16(int(weights[first + largest]) + 65535 - total);
}

} // namespace

/// A primitive's data as welding needs it.
struct RyGltfMeshBuilder::Part
{
    size_t vertexCount = 0;
    std::vector<float> positionCopy;
    const float *positions = nullptr;
    std::vector<std::vector<std::uint32_t>> joints; // where not packed as 8 or 16 bit
    struct InfluenceSet
    {
        const unsigned char *jointBytes = nullptr;
        int jointSize = 0; // 1 or 2 bytes each
        std::vector<unsigned char> jointCopy;
        const float *weights = nullptr;
        std::vector<float> weightCopy;
    };
    std::vector<InfluenceSet> sets;
    std::vector<std::vector<float>> morphs;
    std::vector<float> normals;
    const std::vector<int> *bonesOfJoints = nullptr;
    RyAffine toFigure;
};

void RyGltfMeshBuilder::addPart(int meshIndex, int primitiveIndex, const QString &name,
                                const std::vector<int> &bonesOfJoints, const RyAffine &toFigure, int weldClass)
{
    const RyGltfModel &model = m_document.model();
    const RyGltfPrimitive &primitive = model.meshes[size_t(meshIndex)].primitives[size_t(primitiveIndex)];
    RyMeshPart result;
    result.name = name;
    result.look = primitive.material;
    result.firstFacet = int(facets.size());
    if (primitive.positions < 0) {
        parts.parts.push_back(std::move(result));
        return;
    }

    Part part;
    part.bonesOfJoints = &bonesOfJoints;
    part.toFigure = toFigure;
    const auto floatsOf = [&](int accessor, int components, std::vector<float> &copy) -> const float * {
        const RyGltfAccessor &a = model.accessors[size_t(accessor)];
        const std::span<const unsigned char> bytes = m_document.packedBytes(accessor);
        if (a.componentType == 5126 && a.componentCount == components && !bytes.empty() &&
            reinterpret_cast<std::uintptr_t>(bytes.data()) % alignof(float) == 0) {
            return reinterpret_cast<const float *>(bytes.data());
        }
        copy = m_document.readFloats(accessor);
        copy.resize(size_t(a.count) * size_t(components), 0.0f);
        return copy.data();
    };
    part.vertexCount = size_t(model.accessors[size_t(primitive.positions)].count);
    part.positions = floatsOf(primitive.positions, 3, part.positionCopy);
    if (!bonesOfJoints.empty()) {
        const size_t setCount = std::min(primitive.joints.size(), primitive.weights.size());
        part.sets.resize(setCount);
        for (size_t s = 0; s < setCount; ++s) {
            Part::InfluenceSet &set = part.sets[s];
            const RyGltfAccessor &a = model.accessors[size_t(primitive.joints[s])];
            const std::span<const unsigned char> bytes = m_document.packedBytes(primitive.joints[s]);
            if (!bytes.empty() && (a.componentType == 5121 || a.componentType == 5123)) {
                set.jointBytes = bytes.data();
                set.jointSize = a.componentType == 5121 ? 1 : 2;
            } else {
                std::vector<std::uint16_t> copy;
                for (const std::uint32_t joint : m_document.readUints(primitive.joints[s]))
                    copy.push_back(std::uint16_t(std::min(joint, 65535u)));
                copy.resize(part.vertexCount * 4, 0);
                set.jointCopy = asBytes(copy);
                set.jointBytes = set.jointCopy.data();
                set.jointSize = 2;
            }
            set.weights = floatsOf(primitive.weights[s], 4, set.weightCopy);
        }
    }
    for (const int morph : primitive.morphPositions) {
        if (morph >= 0)
            part.morphs.push_back(m_document.readFloats(morph));
    }
    if (primitive.normals >= 0)
        part.normals = m_document.readFloats(primitive.normals);
    if (primitive.texcoords >= 0) {
        result.uvs = m_document.readFloats(primitive.texcoords);
        result.uvs.resize(part.vertexCount * 2, 0.0f);
    }

    weld(part, result, weldClass);
    readFacets(primitive, int(part.vertexCount), result);
    result.facetCount = int(facets.size()) - result.firstFacet;
    parts.parts.push_back(std::move(result));
}

void RyGltfMeshBuilder::weld(const Part &part, RyMeshPart &result, int weldClass)
{
    const size_t count = part.vertexCount;
    size_t rowSize = 12 + 12 * part.morphs.size();
    for (const Part::InfluenceSet &set : part.sets)
        rowSize += size_t(4 * set.jointSize) + 16;
    if (weldClass != m_weldClass || rowSize != m_rowSize || !part.morphs.empty()) {
        m_weldClass = weldClass;
        m_rowSize = rowSize;
        m_rows.clear();
        m_table.clear();
        m_firstOfClass = int(positions.size());
    }
    const size_t known = m_rowSize ? m_rows.size() / m_rowSize : 0;
    const size_t capacity = std::bit_ceil(std::max<size_t>(16, 2 * (known + count)));
    const auto insertKnown = [&](size_t vertex) {
        size_t slot = hashBytes(m_rows.data() + vertex * rowSize, rowSize) & (capacity - 1);
        while (m_table[slot] >= 0)
            slot = (slot + 1) & (capacity - 1);
        m_table[slot] = int(vertex);
    };
    if (m_table.size() < capacity) {
        m_table.assign(capacity, -1);
        for (size_t vertex = 0; vertex < known; ++vertex)
            insertKnown(vertex);
    }
    const size_t mask = m_table.size() - 1;
    m_rows.reserve((known + count) * rowSize);
    positions.reserve(positions.size() + count);

    result.vertexOfSplit.resize(count);
    result.normalOfSplit.resize(count);
    std::vector<int> firstSplit;          // of each welded vertex that this part touches, -1 for none
    std::vector<int> nextSplit(count, -1);
    firstSplit.reserve(known + count);
    firstSplit.assign(known, -1);
    std::vector<unsigned char> row(rowSize);
    std::vector<std::pair<int, double>> influences;
    const int boneLimit = int(part.bonesOfJoints->size());

    for (size_t v = 0; v < count; ++v) {
        unsigned char *to = row.data();
        std::memcpy(to, part.positions + 3 * v, 12);
        to += 12;
        for (const Part::InfluenceSet &set : part.sets) {
            std::memcpy(to, set.jointBytes + v * size_t(4 * set.jointSize), size_t(4 * set.jointSize));
            to += 4 * set.jointSize;
            std::memcpy(to, set.weights + 4 * v, 16);
            to += 16;
        }
        for (const std::vector<float> &morph : part.morphs) {
            if (3 * v + 3 <= morph.size())
                std::memcpy(to, morph.data() + 3 * v, 12);
            else
                std::memset(to, 0, 12);
            to += 12;
        }

        size_t slot = hashBytes(row.data(), rowSize) & mask;
        int local = -1;
        while (m_table[slot] >= 0) {
            if (std::memcmp(m_rows.data() + size_t(m_table[slot]) * rowSize, row.data(), rowSize) == 0) {
                local = m_table[slot];
                break;
            }
            slot = (slot + 1) & mask;
        }
        if (local < 0) {
            local = int(m_rows.size() / rowSize);
            m_table[slot] = local;
            m_rows.insert(m_rows.end(), row.begin(), row.end());
            const double from[3] = {part.positions[3 * v], part.positions[3 * v + 1], part.positions[3 * v + 2]};
            double at[3];
            part.toFigure.mapPoint(from, at);
            positions.emplace_back(float(at[0]), float(at[1]), float(at[2]));
            influences.clear();
            for (const Part::InfluenceSet &set : part.sets) {
                for (int i = 0; i < 4; ++i) {
                    const double weight = double(set.weights[4 * v + size_t(i)]);
                    if (weight == 0.0)
                        continue;
                    const unsigned char *bytes = set.jointBytes + (4 * v + size_t(i)) * size_t(set.jointSize);
                    std::uint16_t joint = *bytes;
                    if (set.jointSize == 2)
                        std::memcpy(&joint, bytes, 2);
                    if (!std::isfinite(weight) || weight < 0.0 || joint >= boneLimit) {
                        ++droppedInfluences;
                        continue;
                    }
                    const int bone = (*part.bonesOfJoints)[joint];
                    const auto same = std::find_if(influences.begin(), influences.end(),
                                                   [bone](const auto &influence) { return influence.first == bone; });
                    if (same != influences.end())
                        same->second += weight;
                    else
                        influences.emplace_back(bone, weight);
                }
            }
            quantize(influences, m_influenceBones, m_influenceWeights);
            m_influenceStart.push_back(int(m_influenceBones.size()));
            firstSplit.push_back(-1);
        }
        result.vertexOfSplit[v] = m_firstOfClass + local;

        // Splits of one vertex that agree in their normal share a smooth one.
        int shared = -1;
        for (int other = firstSplit[size_t(local)]; other >= 0 && shared < 0; other = nextSplit[size_t(other)]) {
            if (part.normals.size() < 3 * count ||
                std::memcmp(&part.normals[3 * size_t(other)], &part.normals[3 * v], 12) == 0) {
                shared = result.normalOfSplit[size_t(other)];
            }
        }
        result.normalOfSplit[v] = shared >= 0 ? shared : parts.normalCount++;
        nextSplit[v] = firstSplit[size_t(local)];
        firstSplit[size_t(local)] = int(v);
    }
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
    const size_t triangles = primitive.mode == 4 ? count / 3 : count < 3 ? 0 : count - 2;
    result.triangles.reserve(3 * triangles);
    facets.reserve(facets.size() + triangles);
    for (size_t t = 0; t < triangles; ++t) {
        size_t corner[3] = {3 * t, 3 * t + 1, 3 * t + 2};
        if (primitive.mode == 5) {
            corner[0] = t;
            corner[1] = t % 2 ? t + 2 : t + 1;
            corner[2] = t % 2 ? t + 1 : t + 2;
        } else if (primitive.mode == 6) {
            corner[0] = 0;
            corner[1] = t + 1;
            corner[2] = t + 2;
        }
        const std::uint32_t split[3] = {indices[corner[0]], indices[corner[1]], indices[corner[2]]};
        if (split[0] >= unsigned(vertexCount) || split[1] >= unsigned(vertexCount) || split[2] >= unsigned(vertexCount))
            continue;
        RyFacet facet;
        for (int i = 0; i < 3; ++i) {
            result.triangles.push_back(split[i]);
            facet.vertices[i] = result.vertexOfSplit[split[i]];
        }
        facets.push_back(facet);
    }
}

std::vector<RyGltfMeshBuilder::BoneWeights> RyGltfMeshBuilder::takeBoneWeights(int boneCount)
{
    std::vector<int> counts(size_t(boneCount), 0);
    for (const int bone : m_influenceBones)
        ++counts[size_t(bone)];
    std::vector<BoneWeights> result(static_cast<size_t>(boneCount));
    for (size_t bone = 0; bone < result.size(); ++bone) {
        result[bone].vertices.reserve(size_t(counts[bone]));
        result[bone].weights.reserve(size_t(counts[bone]));
    }
    for (size_t v = 0; v + 1 < m_influenceStart.size(); ++v) {
        for (int i = m_influenceStart[v]; i < m_influenceStart[v + 1]; ++i) {
            if (m_influenceWeights[size_t(i)] == 0)
                continue;
            BoneWeights &weights = result[size_t(m_influenceBones[size_t(i)])];
            weights.vertices.push_back(int(v));
            weights.weights.push_back(m_influenceWeights[size_t(i)]);
        }
    }
    return result;
}
