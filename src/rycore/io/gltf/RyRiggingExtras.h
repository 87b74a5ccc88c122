#pragma once

#include "rycore/io/gltf/RyGltfSceneDocument.h"

#include <QStringList>

class RyFacetMesh;

/// What our key in a file's extras holds, because glTF has no place for it: per node end point, rotation order, defaults
/// that differ from the current values, limits, labels and flags; per file the unit factor, face groups and selection
/// maps. It is read back only where it fits what the file says.
namespace RyRiggingExtras {

/// Centimetres per file unit as stored, 0 when nothing is stored.
double storedUnit(const RyGltfDocument &document);
bool hasExtras(const RyGltfDocument &document);

/// Applies what is stored for a node whose rigging has just been read. False when nothing is stored; drops what does
/// not fit with a message. `tolerance` in centimetres.
bool applyToNode(const RyGltfDocument &document, int node, double unit, float tolerance, RyNode &sceneNode,
                 QStringList *messages);
/// Face groups of a figure (number in file order); false when none fit.
bool applyFaceGroups(const RyGltfDocument &document, int figure, RyFacetMesh &mesh, QStringList *messages);
void applySelectionMap(const RyGltfSceneDocument &scene, int figure, RyNode &skeleton);

/// Writes them into a patched document. `nodeOf` finds a scene node's index in it, -1 for none.
void storeNode(RyGltfDocument &document, int node, const RyNode &sceneNode);
void storeFile(RyGltfDocument &document, double unit, const std::vector<const RyNode *> &figures,
               const std::vector<int> &boneNodes, const std::vector<const RyNode *> &bones);

/// The face groups of a mesh as the extras say them, to see whether they were edited.
QString groupsText(const RyFacetMesh &mesh);
/// Likewise the selection map of a skeleton; empty without one.
QString selectionText(const RyNode &node);

} // namespace RyRiggingExtras
