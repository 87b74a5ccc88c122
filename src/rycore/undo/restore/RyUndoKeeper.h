#pragma once

#include <functional>

/// State that no step holds and that belongs to a restore point all the same, such as a selection.
class RyUndoKeeper
{
public:
    virtual ~RyUndoKeeper() = default;
    /// Keeps the present state; the function puts it back and may be called any number of times.
    virtual std::function<void()> keep() = 0;
};
