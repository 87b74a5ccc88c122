#pragma once

#include "rycore/io/gltf/RyGltfModel.h"
#include "rycore/math/RyAffine.h"
#include "rycore/mesh/RyFacet.h"
#include "rycore/scene/RyMeshPart.h"

#include <QStringList>

#include <vector>

class RyGltfDocument;

/// Turns primitives of a glTF file into one mesh for editing: vertices that the file splits (texture seams, hard edges)
/// but that agree in position, influences and morphs become one; the way back to every split vertex is kept in the parts.
class RyGltfMeshBuilder
{
public:
    explicit RyGltfMeshBuilder(const RyGltfDocument &document) : m_document(document) {}

    /// Adds a primitive. `bonesOfJoints` maps joint numbers of its skin to bones (empty: not skinned), `toFigure` its mesh
    /// space to figure space in centimetres. Vertices weld only among parts with the same `weldClass`. Influences that
    /// are not finite, not above zero or name no joint are dropped and counted.
    void addPart(int mesh, int primitive, const QString &name, const std::vector<int> &bonesOfJoints,
                 const RyAffine &toFigure, int weldClass);

    std::vector<RyVec3> positions;
    std::vector<RyFacet> facets;
    RyMeshParts parts;
    int droppedInfluences = 0;

    /// Influences of one bone: welded vertices, ascending, and their weights; every vertex' weights sum to 65535 or to 0.
    struct BoneWeights
    {
        std::vector<int> vertices;
        std::vector<quint16> weights;
    };
    std::vector<BoneWeights> takeBoneWeights(int boneCount);

private:
    struct Part;
    void weld(const Part &part, RyMeshPart &result, int weldClass);
    void readFacets(const RyGltfPrimitive &primitive, int vertexCount, RyMeshPart &result);

    const RyGltfDocument &m_document;
    // Influences of all welded vertices: entry range of vertex v is m_influenceStart[v] .. m_influenceStart[v + 1].
    std::vector<int> m_influenceStart{0};
    std::vector<int> m_influenceBones;
    std::vector<quint16> m_influenceWeights;
    // Raw bytes by which vertices weld, kept per weld class while parts of that class are added.
    int m_weldClass = -1;
    size_t m_rowSize = 0;
    std::vector<unsigned char> m_rows;   // one row per welded vertex of the class
    int m_firstOfClass = 0;
    std::vector<int> m_table;
};
