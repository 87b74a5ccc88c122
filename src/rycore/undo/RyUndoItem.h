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
class RyUndoItem
{
public:
    virtual ~RyUndoItem() = default;
    virtual void swap() = 0;
    /// A null key means that every item of this kind counts.
    virtual RyUndoKey key() const { return {}; }
};
