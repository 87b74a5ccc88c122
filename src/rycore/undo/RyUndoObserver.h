#pragma once

#include "rycore/undo/RyUndoItem.h"

#include <memory>

class RyUndoStep;

/// Is told by the stack of everything that happens to the document, whether a step holds it or not.
class RyUndoObserver
{
public:
    virtual ~RyUndoObserver() = default;
    /// Whether it takes a change about to happen, for which `capture` then brings the item.
    virtual bool wants(const RyUndoKey &key) const = 0;
    virtual void capture(const RyUndoKey &key, std::shared_ptr<RyUndoItem> item) = 0;
    /// A step, or the share of a hold, is about to be redone (`done`) or undone.
    virtual void noteSwap(const std::shared_ptr<RyUndoStep> &step, bool done) = 0;
    /// A change that no step holds.
    virtual void noteLooseChange() = 0;
    /// Steps, or what an open hold had, are about to go.
    virtual void noteClearedHistory() = 0;
    /// The present state is the saved one.
    virtual void noteSaved() = 0;
};
