#pragma once

#include <memory>

class RyHandleDrag;
struct RyDragContext;
struct RyHandle;

/// The drag of a handle, by the handle's kind and target. No handle, and one that nothing hangs on, give a drag that
/// changes nothing.
std::unique_ptr<RyHandleDrag> makeDrag(const RyHandle *handle, const RyDragContext &context);
