#pragma once

#include "rycore/math/RyVec3.h"

#include <QByteArray>
#include <QImage>
#include <QString>

#include <array>
#include <memory>
#include <vector>

class RyFacetMesh;
class RyNormalSource;

/// How a part looks.
struct RyMaterialLook
{
    QString name;
    std::array<float, 4> baseColor{1, 1, 1, 1};
    QImage texture; // null without one
    bool doubleSided = false;
    QByteArray picture;  // the texture as its file has it
    QString pictureName; // name of that file, without a folder
};

/// Some of a mesh's facets as a file had them, ascending: their corners may split a vertex of the mesh (texture seams,
/// hard edges).
struct RyMeshPart
{
    QString name;
    int look = -1; // index into RyMeshParts::looks
    int facetCount = 0;
    std::vector<int> vertexOfSplit; // split vertex to vertex of the mesh
    std::vector<int> normalOfSplit; // split vertices with equal numbers share a smooth normal
    std::vector<float> uvs;         // two per split vertex, empty without texture coordinates; v grows downwards
    std::vector<int> withoutUv;     // split vertices that have none all the same, ascending; 0 0 stands for them
    std::vector<RyVec3> normals;    // per split vertex, in figure space; empty without any, and where a source has them
    std::vector<unsigned> triangles; // three split vertices each, facet by facet
    std::shared_ptr<const RyNormalSource> normalSource;
    /// Where a polygon ends can be told from the triangles: each is a fan, the next one starts at another split vertex.
    bool hasFans = false;

    bool hasNormals() const { return normalSource || !normals.empty(); }
    /// Per split vertex, in figure space; null or none for those without one.
    std::vector<RyVec3> readNormals() const;
};

struct RyMeshParts
{
    /// Facets that follow one another in the mesh, the next ones of a part.
    struct Run
    {
        int part = 0;
        int facetCount = 0;
    };

    std::vector<RyMeshPart> parts;
    std::vector<RyMaterialLook> looks;
    std::vector<Run> order;         // of the mesh's facets; empty: those of the first part, then those of the next
    std::vector<RyVec3> shapedFrom; // the mesh's positions that the normals belong to; empty where only sources know
    int normalCount = 0;            // normalOfSplit counts through all parts

    /// All facets of the mesh, whose they are.
    std::vector<Run> runs() const;
    /// Facets of the mesh in the order of the parts.
    std::vector<int> facetsByPart() const;
    /// Whether these are the parts of such a mesh: its facets, and vertices that it has.
    bool fits(const RyFacetMesh &mesh) const;
};
