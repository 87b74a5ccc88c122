#pragma once

#include <vector>

class RyFloatProperty;

/// Ways through the graph that links make of properties: from controllers to what they control, without circles. Both
/// walks pass a link once, however many ways lead to it.
namespace RyLinkGraph {

/// The property and all that hangs on it, every controller before what it controls.
std::vector<RyFloatProperty *> dependents(RyFloatProperty *property);
/// A way along links, both ends included; empty where there is none. It is looked for from both ends, and takes as long
/// as the end on which less hangs.
std::vector<const RyFloatProperty *> findWay(const RyFloatProperty *from, const RyFloatProperty *to);

/// How many links are in force, of all properties there are. Who looks for links among many properties need not look
/// where there are none.
int linkCount();
/// Called by the links.
void addToLinkCount(int links);

} // namespace RyLinkGraph
