#pragma once

#include <vector>

class RyFloatProperty;
class RyNode;

/// What belongs to the rigging of a node: its private properties, sub-groups before the group they are in, and, where
/// its skin binds it, the bulge controllers of its binding, axis by axis. The pose is no part of it.
std::vector<RyFloatProperty *> listRiggingProperties(const RyNode &node);
