#pragma once

#include <QString>

class RyFloatProperty;
class RyNode;
class RyScene;

/// Finds nodes and properties by what a person writes.
namespace NodeLookup {

/// A name, or the end of a path ("hip/abdomen"). Null with a message when there is none or more than one (their paths are listed).
RyNode *findNode(const RyScene &scene, const QString &text, QString *error);
/// Names from the top-level node down, parted by "/".
QString pathOf(const RyNode *node);
/// "NODE:NAME=VALUE". Null with a message when a part does not fit. `poseOnly`: pose controls alone.
RyFloatProperty *findProperty(const RyScene &scene, const QString &text, bool poseOnly, float *value, QString *error);

} // namespace NodeLookup
