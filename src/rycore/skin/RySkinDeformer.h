#pragma once

#include "rycore/math/RyAffine.h"
#include "rycore/math/RyVec3.h"

#include <vector>

class RyWeightMap;

/// The linear blend of a skin over flat arrays: `v + sum of w * (v X - v)` over the channels that move v. Vertices are
/// sorted into classes by their number of influences and, within a class, cut into blocks; after a change of some maps
/// only the blocks they reach are computed again. Uses AVX2 where the processor has it and several threads for large
/// meshes.
class RySkinDeformer
{
public:
    /// What one map X moves: vertices, ascending, and their weights (1 = full).
    struct Channel
    {
        std::vector<int> vertices;
        std::vector<float> weights;
        /// No vertices for null.
        static Channel fromMap(const RyWeightMap *map);
    };
    enum class Path { Best, Plain, Avx2 };

    void setInfluences(int vertexCount, const std::vector<Channel> &channels);
    int getNumVertices() const { return m_vertexCount; }

    /// The deformed positions, valid until the next call. `maps` has one map per channel. With the same `source` (not
    /// null) and `revision` as in the last call the rest positions are taken to be the same. Other sizes than those of
    /// the influences give the rest positions.
    const std::vector<RyVec3> &deform(const std::vector<RyVec3> &rest, const std::vector<RyAffine> &maps,
                                      const void *source = nullptr, quint64 revision = 0);

    /// Forces a path, for comparisons; one that the processor lacks falls back to the plain one.
    void setPath(Path path);
    static bool hasAvx2();
    /// Vertices computed by the last call and by all calls; calls to `setInfluences`.
    qint64 lastTouched() const { return m_lastTouched; }
    qint64 totalTouched() const { return m_totalTouched; }
    int builds() const { return m_builds; }

    static constexpr int BlockSize = 128;
    static constexpr int ThreadedAbove = 20000;

private:
    /// The vertices with the same number of influences, `influences` entries each.
    struct Class
    {
        int influences = 0;
        std::vector<int> vertices;
        std::vector<quint32> offsets; // of the channels' deltas, in bytes
        std::vector<float> weights;
    };
    struct Block
    {
        int classIndex;
        int first;
        int count;
    };
    void makeBlocks();
    bool takeMaps(const std::vector<RyAffine> &maps, std::vector<char> &changed);
    void computeBlock(const Block &block, const RyVec3 *rest);

    int m_vertexCount = 0;
    int m_channelCount = 0;
    std::vector<Class> m_classes;
    std::vector<int> m_unmoved;
    std::vector<Block> m_blocks;
    std::vector<std::vector<int>> m_blocksOfChannel;
    /// X - 1 of a channel: four rows of four floats, in one cache line.
    struct alignas(64) Delta
    {
        float rows[16] = {};
    };
    std::vector<Delta> m_deltas;
    std::vector<RyVec3> m_result;
    const void *m_source = nullptr;
    quint64 m_revision = 0;
    bool m_resultValid = false;
    Path m_path = Path::Best;
    qint64 m_lastTouched = 0;
    qint64 m_totalTouched = 0;
    int m_builds = 0;
};
