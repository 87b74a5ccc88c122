#pragma once

#include "pluginsource/RyJointTools/tool/drawing/RyWeightColors.h"
#include "pluginsource/RyJointTools/tool/drawing/RyWeightSide.h"

#include "rycore/math/RyMatrix4.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/parametric/RyLegacyBinding.h"
#include "rycore/scene/RyObject.h"

#include <QPointer>

#include <vector>

struct RyShapePoints;

/// How often something was made anew; for tests and benchmarks.
struct RyWeightCounts
{
    int facets = 0;
    int positions = 0;
    int weights = 0; // read from the parameters
    int colors = 0;
    bool operator==(const RyWeightCounts &) const = default;
};

/// The vertices that one side of a joint draws, with facets, posed positions and colours, kept from one drawing to the
/// next: each is made anew only when something that it comes from differs.
class RyKeptWeights
{
public:
    /// `ownAlone`: the partner's weights show nowhere. False when there is nothing to draw: no figure, mesh or face
    /// group.
    bool update(const RyWeightSide &side, RyWeightColors &colors, bool ownAlone);
    /// Why the last update had nothing to draw: the face group that the mesh does not have; empty otherwise.
    const QString &missingGroup() const { return m_missingGroup; }

    // --- As of the last update that had something to draw. A revision is another number after each change, also among
    // all sides.
    const std::vector<unsigned> &triangles() const { return m_triangles; }
    const std::vector<unsigned> &quads() const { return m_quads; }
    quint64 facetsRevision() const { return m_facetsRevision; }
    const std::vector<RyVec3> &positions() const { return m_positions; } // without the figure's own transform
    quint64 positionsRevision() const { return m_positionsRevision; }
    const std::vector<RyWeightColors::Bytes> &colors() const { return m_colors; }
    quint64 colorsRevision() const { return m_colorsRevision; }
    const RyMatrix4 &toWorld() const { return m_toWorld; }
    /// Of the whole mesh, in the world.
    RyVec3 firstVertex() const { return m_firstVertex; }

    const RyWeightCounts &counts() const { return m_counts; }

private:
    struct FacetsKey
    {
        QPointer<const RyObject> object; // whose posed points are taken
        QPointer<const RyFacetMesh> mesh;
        quint64 revision = 0;
        quint64 groupRevision = 0;
        QString group; // empty for the whole mesh
        bool operator==(const FacetsKey &) const = default;
    };
    struct WeightsKey
    {
        QPointer<const RyLegacyJointParam> param;
        QPointer<const RyLegacyJointParam> partner;
        QPointer<const RyLegacyBinding> binding;
        int builds = 0; // of the binding's weights
        quint64 facets = 0;
        bool operator==(const WeightsKey &) const = default;
    };
    struct ColorsKey
    {
        quint64 weights = 0;
        quint64 colors = 0;
        bool isReversed = false;
        bool isPartnerReversed = false;
        bool ownAlone = false;
        bool operator==(const ColorsKey &) const = default;
    };
    bool updateFacets(const RyObject &object, const RyFacetMesh &mesh, const QString &group);
    void listFacets(const RyFacetMesh &mesh, const RyFaceGroup *group);
    void updatePositions(const RyShapePoints &points);
    bool areTouched(const RyShapePoints &points) const;
    void updateWeights(const RyWeightSide &side, const RyLegacyBinding &binding);
    std::vector<quint16> weightsOf(RyLegacyJointParam *param, const RyLegacyBinding &binding) const;
    void updateColors(const RyWeightSide &side, RyWeightColors &colors, bool ownAlone);

    FacetsKey m_facetsKey;
    std::vector<int> m_vertices; // of the mesh, ascending; what follows is in step with them
    std::vector<unsigned> m_triangles;
    std::vector<unsigned> m_quads;
    quint64 m_facetsRevision = 0;

    quint64 m_pointsRevision = 0; // of the object's points, 0 for positions of other vertices
    std::vector<RyVec3> m_positions;
    quint64 m_positionsRevision = 0;

    WeightsKey m_weightsKey;
    std::vector<quint16> m_own;
    std::vector<quint16> m_partners;
    quint64 m_weightsRevision = 0;

    ColorsKey m_colorsKey;
    std::vector<RyWeightColors::Bytes> m_colors;
    quint64 m_colorsRevision = 0;

    QString m_missingGroup;
    RyMatrix4 m_toWorld;
    RyVec3 m_firstVertex;
    RyWeightCounts m_counts;
};
