#pragma once

#include <QString>

#include <vector>

class RyFloatProperty;
class RyNode;
class RyScene;

/// Finds nodes and properties by what a person writes.
namespace RyNodeLookup {

/// A name, or the end of a path ("hip/abdomen"). Null with a message when there is none (names that are near are
/// offered) or more than one (their paths are listed).
RyNode *findNode(const RyScene &scene, const QString &text, QString *error);
/// Names from the top-level node down, parted by "/".
QString pathOf(const RyNode *node);
/// The float values of a node that have a name: pose controls, then rigging (not with `poseOnly`).
std::vector<RyFloatProperty *> values(const RyNode &node, bool poseOnly = false);
/// The value of that name; null with a message that lists the names.
RyFloatProperty *findValue(const RyNode &node, const QString &name, bool poseOnly, QString *error);
/// "NODE:NAME=VALUE". Null with a message when a part does not fit. `poseOnly`: pose controls alone.
RyFloatProperty *findProperty(const RyScene &scene, const QString &text, bool poseOnly, float *value, QString *error);
/// Whether the limits of a value let it become `value`, with what contributes to it from elsewhere; false with a
/// message.
bool canBecome(const RyFloatProperty &property, float value, QString *error);

} // namespace RyNodeLookup
