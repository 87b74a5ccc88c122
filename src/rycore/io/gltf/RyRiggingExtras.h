#pragma once

#include "rycore/io/gltf/RyGltfSceneDocument.h"

#include <QStringList>

#include <functional>

class RyFacetMesh;

/// What our key in a file's extras holds, because glTF has no place for it: per node end point, rotation order, defaults
/// that differ from the current values, limits, labels and flags; per file the unit factor, face groups and selection
/// maps. It is read back only where it fits what the file says.
namespace RyRiggingExtras {

/// Centimetres per file unit as stored, 0 when nothing is stored.
double storedUnit(const RyGltfDocument &document);

/// Applies what is stored for a node whose rigging has just been read. False when nothing is stored; drops what does
/// not fit with a message. `tolerance` in centimetres. A stored orientation fits where it leaves of `bind`, the rest frame, a
/// symmetric stretch: a frame with a reflection has several.
bool applyToNode(const RyGltfDocument &document, int node, double unit, float tolerance, const RyAffine &bind,
                 RyNode &sceneNode, QStringList *messages);
/// Applies the stored limits of the pose controls; after the pose, which is what the file says.
void applyLimits(const RyGltfDocument &document, int node, RyNode &sceneNode);
/// Face groups of a figure (number in file order); false when none fit.
bool applyFaceGroups(const RyGltfDocument &document, int figure, RyFacetMesh &mesh, QStringList *messages);
void applySelectionMap(const RyGltfSceneDocument &scene, int figure, RyNode &skeleton);

/// Name of a figure (number in file order) as it was saved; empty when none is stored.
QString storedFigureName(const RyGltfDocument &document, int figure);

/// The rest of a skin's joints is read back where the topmost of them stands in the world, and that of a prop where it stands on
/// its bone: their pose becomes rest. Gives the map from the rest in the scene to that one; false when the two are the same.
/// `anchorOf` finds the joint by which a bone's rest is found.
using AnchorOf = std::function<const RyNode *(const RyNode &bone)>;
bool findRestMap(const RyNode &node, const AnchorOf &anchorOf, RyAffine &map);

/// Writes them into a patched document. `place`: the origin as the file says it, where that is not the node's.
void storeNode(RyGltfDocument &document, int node, const RyNode &sceneNode, const AnchorOf &anchorOf,
               const RyVec3 *place = nullptr);
void storeFile(RyGltfDocument &document, double unit, const std::vector<const RyNode *> &figures,
               const std::vector<int> &nodes, const std::vector<const RyNode *> &sceneNodes);

/// What is stored of a node, to see whether it was edited.
QString nodeText(const RyNode &node);
/// The face groups of a mesh as the extras say them, to see whether they were edited.
QString groupsText(const RyFacetMesh &mesh);
/// Likewise the selection map of a skeleton; empty without one.
QString selectionText(const RyNode &node);

} // namespace RyRiggingExtras
