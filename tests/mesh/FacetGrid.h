#pragma once

#include "rycore/mesh/RyFacetMesh.h"

inline RyFacet triangle(int a, int b, int c)
{
    return {{a, b, c, -1}, -1};
}

inline RyFacet quad(int a, int b, int c, int d)
{
    return {{a, b, c, d}, -1};
}

/// A grid of quads in the XY plane, (n + 1)^2 vertices one centimetre apart.
inline RyRef<RyFacetMesh> grid(int n)
{
    RyRef<RyFacetMesh> mesh(new RyFacetMesh);
    std::vector<RyVec3> positions;
    std::vector<RyFacet> facets;
    for (int y = 0; y <= n; ++y) {
        for (int x = 0; x <= n; ++x)
            positions.push_back({float(x), float(y), 0.0f});
    }
    for (int y = 0; y < n; ++y) {
        for (int x = 0; x < n; ++x) {
            const int a = y * (n + 1) + x;
            facets.push_back(quad(a, a + 1, a + n + 2, a + n + 1));
        }
    }
    mesh->setPositions(positions);
    mesh->setFacets(facets);
    return mesh;
}

inline RyIndexList list(std::initializer_list<int> indices)
{
    RyIndexList result;
    for (int index : indices)
        result.append(index);
    return result;
}

/// Facets and groups as one text.
inline QString dump(const RyFacetMesh *mesh)
{
    QString text;
    for (const RyFacet &f : mesh->getFacets()) {
        text += QString("%1,%2,%3,%4:%5 ")
                    .arg(f.vertices[0])
                    .arg(f.vertices[1])
                    .arg(f.vertices[2])
                    .arg(f.vertices[3])
                    .arg(f.group);
    }
    for (int i = 0; i < mesh->getNumFaceGroups(); ++i) {
        text += '|' + mesh->getFaceGroup(i)->getName() + ':';
        for (int k = 0; k < mesh->getFaceGroup(i)->getFacets().count(); ++k)
            text += QString::number(mesh->getFaceGroup(i)->getFacets().getIndex(k)) + ' ';
    }
    return text;
}
