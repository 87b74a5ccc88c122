#pragma once

#include <QtGlobal>

/// What an undo item changes: the thing and which of its values. Items with equal keys change the same value, so that
/// one step needs only the first of them.
struct RyUndoKey
{
    const void *target = nullptr;
    quintptr aspect = 0;

    bool isNull() const { return target == nullptr; }
    bool operator==(const RyUndoKey &o) const { return target == o.target && aspect == o.aspect; }
};

/// A change that can be swapped: `swap()` exchanges the value kept here with the one in place, so the same call undoes
/// and redoes. An item whose target is gone does nothing. It emits the signals that the edit itself would emit.
///
/// Listeners of those signals may write values that other items of the step hold. Items of such values keep undo exact
/// by implementing `prepare` and `settle`; most items need neither.
class RyUndoItem
{
public:
    virtual ~RyUndoItem() = default;
    virtual void swap() = 0;
    /// A null key means that every item of this kind counts.
    virtual RyUndoKey key() const { return {}; }
    /// Whether the target still exists. A key may come back with another object at the same address; a dead item does
    /// not stop the new object's change from being recorded.
    virtual bool isAlive() const { return true; }
    /// Called for all items of a step before the first of them is swapped: keep the value in place now.
    virtual void prepare() {}
    /// Called after the last swap of the step: put the value that `swap` wrote in place again. True when it had
    /// changed.
    virtual bool settle() { return false; }
};
