#pragma once

#include <QVariantMap>

class RyNode;

/// Which bones of the skeleton of a node are opposites along an axis, by the usual prefixes: `pairs`, each with
/// `first`, `second` and `stage` ("prefix", "name" or "place"), and `alone`. Both empty without a skeleton and for
/// another axis than 0 to 2.
QVariantMap listMirrorPairs(const RyNode *node, int axis);
