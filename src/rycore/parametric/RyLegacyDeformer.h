#pragma once

#include "rycore/parametric/RyLegacyMover.h"
#include "rycore/scene/RyPointChanges.h"

#include <QtGlobal>

/// Moves the vertices of a parametric figure: the formulas stand at RyLegacyPose, RyLegacyMotion, RyLegacySite and the
/// zones. Works on values alone. What was computed is kept: a change of some parameters makes only their weights anew,
/// a change of some controls moves only the vertices that these bones move. In double precision but for fractions and
/// results; what a vertex gets depends neither on threads nor on what else is moved. Figures at rest come out bit for
/// bit as they went in.
///
/// Normals are carried by the linear parts with the fractions of their vertex; what fractions that differ from vertex
/// to vertex bend between them is left out, as in RySkinDeformer.
class RyLegacyDeformer
{
public:
    /// One position at rest for each owner of the rig, from which weights are made.
    void setRig(const RyLegacyRig &rig, const std::vector<RyVec3> &rest);
    /// The vertices of further normals, behind those of the vertices. To be set again after a rig.
    void setFurtherNormals(const std::vector<int> &vertices);
    const RyLegacyRig &rig() const { return m_weights.rig(); }
    int getNumVertices() const { return int(m_weights.positions().size()); }

    /// How far a vertex follows a bone.
    RyLegacyFractions fractions(int bone, int vertex) const;
    /// All bones that move a vertex, children before parents.
    std::vector<RyLegacyPose::Part> parts(int vertex) const;
    /// The lowest bone whose translation the vertex follows by half or more, -1 where it follows none.
    int leader(int vertex) const;
    /// The weights of a parameter, one for each vertex: its fractions, of a smooth-scale the share of its driver's
    /// scale, where it acts; 0 elsewhere.
    std::vector<float> weights(int param) const;

    /// For any controls and any positions at rest, of which there are as many as the rig has; keeps nothing. May be
    /// called from several threads.
    void deform(const std::vector<RyVec3> &rest, const std::vector<RyLegacyControls> &controls,
                std::vector<RyVec3> &out) const;
    /// The same for one point that belongs to a bone, with weights of its own and in double precision throughout.
    void mapPoint(const RyLegacyPose &pose, int owner, const double rest[3], double out[3]) const;

    /// The deformed positions of the rig's, valid until the next call. `restNormals` may be null; `normalsRevision`
    /// tells others from those of the last call.
    const std::vector<RyVec3> &pose(const std::vector<RyLegacyControls> &controls,
                                    const std::vector<RyVec3> *restNormals = nullptr, quint64 normalsRevision = 0);
    /// Those of the last call, of any length; empty when it carried none.
    const std::vector<RyVec3> &normals() const { return m_normals; }
    /// By places: the vertices, then the further normals.
    const RyPointChanges &changes() const { return m_changes; }

    /// Vertices computed by the last call of `pose`; how often the weights of a parameter were made, and groups of
    /// vertices.
    qint64 lastTouched() const { return m_lastTouched; }
    int weightBuilds(int param) const { return m_weights.builds(param); }
    int groupBuilds() const { return m_groupBuilds; }

    static constexpr int ThreadedAbove = 20000;

private:
    struct Run
    {
        int group;
        int first;
        int count;
    };
    std::vector<char> movedGroups(const std::vector<RyLegacyControls> &controls) const;
    void markChanges(const std::vector<char> &moved);
    /// What is no longer as it was, bit for bit.
    void markDifferences(const std::vector<RyVec3> &positions, const std::vector<RyVec3> &normals);
    void moveGroups(const RyLegacyFrame &frame, const std::vector<char> &moved, const RyLegacyKernels::Row &points,
                    const RyLegacyKernels::Row &normals) const;

    RyLegacyWeights m_weights;
    RyLegacyGroups m_groups;
    std::vector<Run> m_runs;
    std::vector<int> m_furtherNormals;
    std::vector<RyLegacyControls> m_controls; // of the last call
    quint64 m_normalsRevision = 0;
    bool m_resultValid = false;
    std::vector<RyVec3> m_positions;
    std::vector<RyVec3> m_normals;
    RyPointChanges m_changes;
    qint64 m_lastTouched = 0;
    int m_groupBuilds = 0;
};
