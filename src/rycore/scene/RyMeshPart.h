#pragma once

#include "rycore/math/RyVec3.h"

#include <QImage>
#include <QString>

#include <array>
#include <memory>
#include <vector>

/// How a part looks.
struct RyMaterialLook
{
    QString name;
    std::array<float, 4> baseColor{1, 1, 1, 1};
    QImage texture; // null without one
    bool doubleSided = false;
};

/// A run of a mesh's facets as a file had it: its corners may split a vertex of the mesh (texture seams, hard edges).
struct RyMeshPart
{
    QString name;
    int look = -1; // index into RyMeshParts::looks
    int firstFacet = 0;
    int facetCount = 0;
    std::vector<int> vertexOfSplit;  // split vertex to vertex of the mesh
    std::vector<int> normalOfSplit;  // split vertices with equal numbers share a smooth normal
    std::vector<float> uvs;          // two per split vertex, empty without texture coordinates
    std::vector<unsigned> triangles; // three split vertices each
};

struct RyMeshParts
{
    std::vector<RyMeshPart> parts;
    std::vector<RyMaterialLook> looks;
    int normalCount = 0; // normalOfSplit counts through all parts
};
