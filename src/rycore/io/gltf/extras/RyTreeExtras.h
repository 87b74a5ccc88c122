#pragma once

#include "rycore/math/RyAffine.h"

#include <utility>
#include <vector>

class RyGltfDocument;

/// What our key in the extras of skins, primitives and of what is gone says.
namespace RyTreeExtras {

/// Marks a node or skin that was removed from the scene but keeps its place in the file's lists.
void markRemoved(RyGltfDocument &document, const char *list, int index);
bool isRemoved(const RyGltfDocument &document, const char *list, int index);

/// Marks the node that carries a figure: its place, and what the figure hangs on. Joints below it are of no figure that
/// has joints above it.
void markFigure(RyGltfDocument &document, int node);
bool isFigure(const RyGltfDocument &document, int node);

/// The map from a skin's mesh space to figure space, in units of the file: a file says only where joints are and how
/// vertices follow them, and any such map is as true as another.
void storeToFigure(RyGltfDocument &document, int skin, const RyAffine &toFigure);
bool findToFigure(const RyGltfDocument &document, int skin, RyAffine &toFigure);

/// Split vertices of a primitive that belong to other vertices of the scene than those they look like: pairs of a split
/// vertex and a number above zero. An empty list takes what is stored away.
void storeApart(RyGltfDocument &document, int mesh, int primitive, const std::vector<int> &pairs);
std::vector<int> findApart(const RyGltfDocument &document, int mesh, int primitive);

/// Split vertices that nothing moves: a file cannot say that, so it has them held by a joint.
void storeFree(RyGltfDocument &document, int mesh, int primitive, const std::vector<int> &splits);
std::vector<int> findFree(const RyGltfDocument &document, int mesh, int primitive);

/// Polygons of a primitive whose first corner is not the one that their fan starts at: pairs of the polygon's first
/// triangle, ascending, and the number of that corner, counted from the fan's.
void storeFirstCorners(RyGltfDocument &document, int mesh, int primitive, const std::vector<int> &pairs);
std::vector<int> findFirstCorners(const RyGltfDocument &document, int mesh, int primitive);

/// Split vertices that have no texture coordinates where others have some, ascending: the format has no other way than
/// to give them some.
void storeWithoutUv(RyGltfDocument &document, int mesh, int primitive, const std::vector<int> &splits);
std::vector<int> findWithoutUv(const RyGltfDocument &document, int mesh, int primitive);

/// What is said of triangles, texture coordinates and normals, for a copy of the primitive.
void copySurface(RyGltfDocument &document, std::pair<int, int> from, std::pair<int, int> to);

/// A primitive whose normals were worked out, since what it was made from has none.
void storeMadeNormals(RyGltfDocument &document, int mesh, int primitive);
bool hasMadeNormals(const RyGltfDocument &document, int mesh, int primitive);

} // namespace RyTreeExtras
