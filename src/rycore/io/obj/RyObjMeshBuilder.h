#pragma once

#include "rycore/io/RyPolygonFans.h"
#include "rycore/io/obj/RyKeyTable.h"
#include "rycore/mesh/RyFacet.h"
#include "rycore/mesh/RyPolygon.h"
#include "rycore/scene/RyMeshPart.h"

class RyFacetShape;
class RyObjFile;
class RyObjLooks;

/// Makes the mesh of an OBJ file: its vertices in their order, facets of three and four corners, larger polygons cut,
/// groups; and where it has texture coordinates, normals or materials, a part for each material.
class RyObjMeshBuilder
{
public:
    /// `unit`: centimetres in one unit of the file.
    RyObjMeshBuilder(const RyObjFile &file, double unit, RyObjLooks &looks);

    RyFacetShape *makeShape();
    /// Polygons of more than four corners that no fan of triangles covers.
    int foldedCount() const { return m_foldedCount; }

private:
    struct Facets
    {
        std::vector<RyFacet> facets;
        std::vector<RyPolygon> polygons;
        std::vector<int> groups;
        /// A polygon of these vertices; a larger one is cut into the fan that starts at one of them.
        void add(const std::vector<int> &vertices, int start, int group);
    };

    bool needsParts() const;
    void makeFacets(Facets &result);
    void countFolded(const RyPolygonFans &fans, int cornerCount);
    void makePartFacets(Facets &result);
    void assignParts();
    void joinEqualNumbers();
    void findSplits();
    /// Readers number vertices as they come: where the parts do not name all of them in order, the first part does.
    void nameAllVertices();
    bool isNatural() const;
    void fillSplits();
    void addRun(int part, int facetCount);
    void fillMissingNormals(RyFacetShape &shape);

    const RyObjFile &m_file;
    double m_unit;
    RyObjLooks &m_looks;
    std::vector<RyVec3> m_positions;
    std::shared_ptr<RyMeshParts> m_parts;
    std::vector<int> m_partOfMaterial;             // of the material -1 first
    std::vector<int> m_texcoords;                  // of the file's: the first equal one
    std::vector<int> m_normals;                    // likewise; -1 for what is no direction
    RyKeyTable m_corners;                          // part, vertex, texture coordinate, normal
    int m_usedCorners = 0;                         // numbers of the table from here on are of no polygon
    std::vector<int> m_splitOfCorner;              // by the numbers of the table, in its part
    RyKeyTable m_normalNumbers;                    // vertex and normal
    std::vector<std::vector<int>> m_cornerOfSplit; // per part, numbers of the table
    int m_foldedCount = 0;
};
