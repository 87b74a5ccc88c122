#pragma once

#include <nlohmann/json_fwd.hpp>

#include <QStringList>

#include <vector>

class RyFacetMesh;
struct RyFacet;
struct RyMeshParts;
struct RyPolygon;

/// What a figure's entry in the extras of a file says of its mesh: the order of the facets, and the face groups.
namespace RyMeshExtras {

using Json = nlohmann::ordered_json;

/// Brings facets, which come part by part, into the order that a save kept.
void applyFacetOrder(const Json &figure, std::vector<RyFacet> &facets, std::vector<RyPolygon> &polygons,
                     RyMeshParts &parts, QStringList *messages);
/// Face groups of a mesh whose facets are in their order; false when none fit.
bool applyFaceGroups(const Json &figure, RyFacetMesh &mesh, QStringList *messages);
/// `parts` may be null.
void store(const RyFacetMesh &mesh, const RyMeshParts *parts, Json &figure);
/// The face groups as the extras say them, to see whether they were edited.
QString groupsText(const RyFacetMesh &mesh);

} // namespace RyMeshExtras
