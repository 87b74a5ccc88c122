#pragma once

#include "rycore/math/RyAffine.h"
#include "rycore/math/RyVec3.h"
#include "rycore/scene/RyPointChanges.h"
#include "rycore/skin/RySkinInfluences.h"
#include "rycore/skin/RySkinKernels.h"

#include <vector>

/// The normals that a skin carries along; none by default.
struct RySkinNormals
{
    /// Of the vertices, then the further ones (see RySkinDeformer::setFurtherNormals); unit vectors.
    const std::vector<RyVec3> *rest = nullptr;
    /// One per channel, of which the linear part is taken; null where all maps carry normals themselves.
    const std::vector<RyAffine> *maps = nullptr;
};

/// The linear blend of a skin over flat arrays: `v + sum of w * (v X - v)` over the channels that move v, and normals
/// with it. After a change of some maps only what they move is computed again. Uses AVX2 where the processor has it and
/// several threads for large meshes; what one vertex gets depends on neither, but for the rounding of AVX2.
///
/// A normal is blended as its vertex is, `n + sum of w * (n N - n)`, and left as long as that makes it; N is the map
/// that carries normals where X carries points (see RyNormalMap), X itself for a turn with an equal scale. As usual,
/// what weights that differ from vertex to vertex bend between them is left out.
class RySkinDeformer
{
public:
    using Channel = RySkinChannel;
    enum class Path { Best, Plain, Avx2 };
    /// Drops the further normals.
    void setInfluences(int vertexCount, const std::vector<Channel> &channels);
    /// The vertices of further normals, behind those of the vertices.
    void setFurtherNormals(const std::vector<int> &vertices);
    int getNumVertices() const { return m_influences.vertexCount(); }

    /// The deformed positions, valid until the next call. `maps` has one map per channel. With the same `source` (not
    /// null) and `revision` as in the last call the rest positions and normals are taken to be the same; with another
    /// revision of that source, to differ where `changes` (by places) say so, everywhere without any. Other sizes than
    /// those of the influences give the rest as it is.
    const std::vector<RyVec3> &deform(const std::vector<RyVec3> &rest, const std::vector<RyAffine> &maps,
                                      const void *source = nullptr, quint64 revision = 0,
                                      const RySkinNormals &normals = RySkinNormals(),
                                      const RyPointChanges *changes = nullptr);
    /// Those of the last call, of any length; empty when it carried none.
    const std::vector<RyVec3> &normals() const { return m_normals; }
    /// By places (see RySkinInfluences).
    const RyPointChanges &changes() const { return m_changes; }

    /// Forces a path, for comparisons; one that the processor lacks falls back to the plain one.
    void setPath(Path path);
    static bool hasAvx2();
    /// Vertices computed by the last call and by all calls; calls to `setInfluences`.
    qint64 lastTouched() const { return m_lastTouched; }
    qint64 totalTouched() const { return m_totalTouched; }
    int builds() const { return m_builds; }

    static constexpr int BlockSize = RySkinInfluences::BlockSize;
    static constexpr int ThreadedAbove = 20000;

private:
    /// So many runs at least make a task of a thread: fewer cost more than they gain.
    static constexpr int RunsOfTask = 4;
    using Class = RySkinInfluences::Class;
    using Run = RySkinInfluences::Run;
    using Picks = RySkinInfluences::Picks;

    bool takeMaps(const std::vector<RyAffine> &maps, const std::vector<RyAffine> *normalMaps,
                  std::vector<char> &changed);
    void copyRest(const std::vector<int> &places);
    void computeAll();
    void computeMovedBy(const std::vector<char> &channels, const std::vector<RyPointChanges::Range> &places);
    template<class Compute>
    void forParts(size_t count, Compute compute) const;
    RySkinKernels::Task taskFor(int classIndex);
    void computeRun(const Run &run);
    void computePicks(const Picks &picks, const std::vector<int> &picked);
    void blend(RySkinKernels::Task task, bool ownNormalMaps) const;
    void count(int classIndex, int elements);

    RySkinInfluences m_influences;
    std::vector<RySkinKernels::Delta> m_deltas;
    std::vector<RySkinKernels::Delta> m_normalDeltas; // N - 1 in the first three rows
    std::vector<char> m_ownNormalMaps;                // channels whose N is not X
    std::vector<char> m_ownNormalBlocks;              // what these move; empty for none
    const RyVec3 *m_restPositions = nullptr;          // within a call
    const RyVec3 *m_restNormals = nullptr;            // within a call, null without normals
    std::vector<RyVec3> m_positions;
    std::vector<RyVec3> m_normals;
    RyPointChanges m_changes;
    const void *m_source = nullptr;
    quint64 m_revision = 0;
    bool m_resultValid = false;
    Path m_path = Path::Best;
    qint64 m_lastTouched = 0;
    qint64 m_totalTouched = 0;
    int m_builds = 0;
};
