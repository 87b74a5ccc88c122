#pragma once

#include "rycore/io/gltf/extras/RyGltfOrigin.h"
#include "rycore/io/gltf/extras/RyMapExtras.h"

#include <QStringList>

#include <map>
#include <set>

class RyFacetMesh;
struct RyFacet;
struct RyMeshParts;
struct RyPolygon;

/// What our key in the extras of a file holds: the unit factor, and an entry for each figure and prop: face groups,
/// selection map, the figure's own transform and the order of its bindings.
namespace RyFigureExtras {

/// Which entry belongs to which node of the file.
class Entries
{
public:
    explicit Entries(const RyGltfDocument &document);
    /// The entry of the figure that has one of these nodes; in files that do not say it the one with the figure's
    /// number. -1 for none.
    int find(const std::vector<int> &nodes, int number) const;

private:
    bool m_exist = false;
    std::map<int, int> m_entryOf; // by the node that an entry says, empty where none does
};

/// Centimetres per file unit as stored, 0 when nothing is stored.
double storedUnit(const RyGltfDocument &document);
/// Brings a mesh's facets, which come part by part, into the order that a save kept.
void applyFacetOrder(const RyGltfDocument &document, int figure, std::vector<RyFacet> &facets,
                     std::vector<RyPolygon> &polygons, RyMeshParts &parts, QStringList *messages);
/// Face groups of a figure, whose facets are in their order; false when none fit.
bool applyFaceGroups(const RyGltfDocument &document, int figure, RyFacetMesh &mesh, QStringList *messages);
void applySelectionMap(const RyGltfOrigin &origin, int figure, RyNode &skeleton);
/// Name of a figure as it was saved; empty when none is stored.
QString storedFigureName(const RyGltfDocument &document, int figure);
/// Name of the object of a figure or prop: the stored one, else that of its node.
QString objectName(const RyGltfDocument &document, int figure, const RyNode &node);
/// Label, flags and, `withPlace`, place and limits of a figure.
void applyToFigure(const RyGltfDocument &document, int figure, double unit, bool withPlace, RyNode &node);
/// Nodes of the bones that have bindings, in their order, where they are not simply the joints.
std::vector<int> storedBindings(const RyGltfDocument &document, int figure, bool *isStored);

bool hasMaps(const RyGltfDocument &document, int figure);
/// Local, scale and bulge maps, where the influences of the file are those that they were stored with.
void applyMaps(const RyGltfDocument &document, int figure, const RyMapExtras::Fingerprint &influences, int vertexCount,
               const RyGltfNodeIndex &nodeOf, RySkinBinding &skin, QStringList *messages);

/// What is stored of the skin of a figure without a mesh; null for nothing.
const nlohmann::ordered_json *storedSkin(const RyGltfDocument &document, int figure);

/// What is stored of the joints of a parametric figure; null for nothing.
const nlohmann::ordered_json *storedParametric(const RyGltfDocument &document, int figure);

/// Sets what figures follow, found by their stored entries.
void applyFollowTargets(const RyGltfDocument &document, const std::map<int, RyNode *> &figures, QStringList *messages);

/// What is stored of the values of morphs; null for nothing.
const nlohmann::ordered_json *storedMorphs(const RyGltfDocument &document, int figure);

/// Writes all of it, with the links between nodes. `figures`: null for one that is gone; `joints`: nodes that a reader
/// finds in skins; `keptParametric`: joints of figures that they do not fit, as they stood in the file.
void storeFile(RyGltfDocument &document, double unit, const std::vector<const RyNode *> &figures,
               const RyGltfNodeIndex &nodeOf, const std::set<int> &joints,
               const std::map<const RyNode *, QString> &keptParametric, QStringList *messages);

/// The selection map of a skeleton, to see whether it was edited; empty without one.
QString selectionText(const RyNode &node);

} // namespace RyFigureExtras
