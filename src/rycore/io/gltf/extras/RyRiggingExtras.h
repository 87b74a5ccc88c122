#pragma once

#include "rycore/io/gltf/extras/RyGltfOrigin.h"

#include <nlohmann/json_fwd.hpp>

#include <QStringList>

/// What our key in the extras of a node holds, because glTF has no place for it: end point, rotation order, defaults
/// that differ from the current values, pose, limits, labels and flags. It is read back only where it fits what the
/// file says.
namespace RyRiggingExtras {

/// Applies what is stored for a node whose rigging has just been read. False when nothing is stored; drops what does
/// not fit with a message. `tolerance` in centimetres. A stored orientation fits where it leaves of `bind`, the rest
/// frame, a symmetric stretch: a frame with a reflection has several.
bool applyToNode(const RyGltfDocument &document, int node, double unit, float tolerance, const RyAffine &bind,
                 RyNode &sceneNode, QStringList *messages);
/// Applies the stored limits and defaults of the pose controls; after the pose, which is what the file says.
void applyLimits(const RyGltfDocument &document, int node, double unit, RyNode &sceneNode);

/// The map that the stored pose makes, in centimetres; false when none is stored.
bool findStoredPose(const RyGltfDocument &document, int node, double unit, RyAffine &map);
/// The rest frame of a node of which the file says only where it is: `posed` without the stored pose, where that brings
/// it to the stored place.
RyAffine restOf(const RyGltfDocument &document, int node, double unit, const RyAffine &posed);
/// Sets the pose controls to the stored numbers, of the many that make one map; false, and nothing done, when they make
/// another.
bool applyPose(const RyGltfDocument &document, int node, double unit, const RyAffine &localPose, float tolerance,
               RyNode &sceneNode);
/// Applies what is stored of a figure itself; `withPlace`: where it stands and is turned to as well.
void applyFigure(const nlohmann::ordered_json &stored, double unit, bool withPlace, RyNode &figure);

/// What is stored of a node. `place`: the origin as the file says it, where that is not the node's.
nlohmann::ordered_json nodeJson(const RyNode &sceneNode, const RyVec3 *place);
/// Bytes that differ where what is stored of a node does, to see whether it was edited; cheaper than the text of it.
QByteArray nodeState(const RyNode &node);
/// Writes it into a patched document. `bind`: the rest frame of a bone as the document has it; where the bone's
/// orientation is another, the frame's is stored beside it.
void storeNode(RyGltfDocument &document, int node, const RyNode &sceneNode, const RyVec3 *place = nullptr,
               const RyAffine *bind = nullptr);

} // namespace RyRiggingExtras
