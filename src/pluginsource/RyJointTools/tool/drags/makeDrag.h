#pragma once

#include <memory>

class RyHandleDrag;
class RyNode;
struct RyDragFrame;
struct RyHandle;

/// The drag of a handle of the node, by the handle's kind and target. No handle, and one that nothing hangs on, give
/// a drag that changes nothing.
std::unique_ptr<RyHandleDrag> makeDrag(const RyHandle *handle, RyNode *node, RyDragFrame &frame);
