#pragma once

#include "rycore/io/gltf/document/RyGltfModel.h"
#include "rycore/math/RyAffine.h"
#include "rycore/mesh/RyFacet.h"
#include "rycore/mesh/RyPolygon.h"
#include "rycore/scene/RyMeshPart.h"

#include <QStringList>

#include <cstdint>
#include <map>
#include <memory>
#include <vector>

class RyGltfDocument;
class RyGltfSplitVertices;

/// Turns primitives of a glTF file into one mesh for editing: vertices that the file splits (texture seams, hard edges)
/// but that agree in position, influences and morphs become one; the way back to every split vertex is kept in the
/// parts.
class RyGltfMeshBuilder
{
public:
    explicit RyGltfMeshBuilder(std::shared_ptr<const RyGltfDocument> document);
    ~RyGltfMeshBuilder();

    /// Adds a primitive. `bonesOfJoints` maps joint numbers of its skin to bones (empty: not skinned), `toFigure` its
    /// mesh space to figure space in centimetres. Vertices weld only among parts with the same `weldClass`. Influences
    /// that are not finite, not above zero or name no joint are dropped and counted.
    void addPart(int mesh, int primitive, const QString &name, const std::vector<int> &bonesOfJoints,
                 const RyAffine &toFigure, int weldClass);

    std::vector<RyVec3> positions;
    std::vector<RyFacet> facets;
    std::vector<RyPolygon> polygons;
    RyMeshParts parts;
    int droppedInfluences = 0;
    std::uint64_t comparisons = 0; ///< of split vertices with known ones

    /// Influences of one bone: welded vertices, ascending, and their weights; every vertex' weights sum to full weight
    /// or to 0.
    struct BoneWeights
    {
        std::vector<int> vertices;
        std::vector<quint16> weights;
    };
    std::vector<BoneWeights> boneWeights(int boneCount) const;
    /// Lets go of what only adding parts and asking for weights need.
    void finish();
    /// Per welded vertex the bone with the largest weight, -1 where no bone has any.
    const std::vector<int> &strongestBones() const { return m_strongest; }

private:
    /// A primitive with positions.
    void readGeometry(int mesh, int primitive, const std::vector<int> &bonesOfJoints, const RyAffine &toFigure,
                      RyMeshPart &result);
    void beginClass(int weldClass);
    void growTable(size_t added);
    void weld(const RyGltfSplitVertices &splits, RyMeshPart &result);
    void readTexcoords(int mesh, int primitive, size_t count, RyMeshPart &result) const;
    void findNormals(const RyGltfSplitVertices &splits, const RyGltfPrimitive &primitive, int firstVertex,
                     RyMeshPart &result);
    const RyMeshPart *findSharer(const RyGltfPrimitive &primitive, const RyMeshPart &part);
    void shareNormals(const RyGltfSplitVertices &splits, int firstVertex, RyMeshPart &result);
    void addVertices(const RyGltfSplitVertices &splits, int firstVertex, const RyAffine &toFigure);
    /// `firstCorners`: as our extras say them.
    void addFacets(std::vector<std::uint32_t> triangles, const std::vector<int> &firstCorners, RyMeshPart &result);
    void addPolygon(const unsigned *triangles, int count, int firstCorner, const RyMeshPart &part);
    std::vector<int> findWithoutUv(int mesh, int primitive, size_t count) const;

    std::shared_ptr<const RyGltfDocument> m_document;
    /// Parts of the weld class at hand; welded vertices refer to the split vertex that they came from.
    std::vector<std::unique_ptr<RyGltfSplitVertices>> m_classParts;
    /// Places of these parts by their accessors of positions and normals.
    std::map<std::pair<int, int>, size_t> m_sharers;
    struct Origin
    {
        int part;
        int split;
    };
    std::vector<Origin> m_origins; // per welded vertex of the class
    int m_weldClass = -1;
    int m_firstOfClass = 0;
    // Hash table of welded vertices of the class: 0 for none, or one more than the vertex in as many bits as slots are
    // told by, which at most half of them need, and above it bits of its hash: others are seldom looked at.
    std::vector<std::uint32_t> m_table;
    std::uint32_t tagOf(std::uint64_t hash) const
    {
        return std::uint32_t(hash >> 32) & ~std::uint32_t(m_table.size() - 1);
    }
    // Influences in runs of welded vertices: a run has `width` places for each vertex, empty ones weigh 0.
    struct InfluenceRun
    {
        int firstVertex;
        int vertexCount;
        int width;
        std::vector<quint16> bones;
        std::vector<quint16> weights;
    };
    std::vector<InfluenceRun> m_runs;
    std::vector<int> m_strongest;
};
