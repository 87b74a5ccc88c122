#pragma once

#include "rycore/undo/RyUndoStack.h"

#include <QPointer>

#include <memory>
#include <utility>

/// What a description of a value says about it by default. A description is a small type with `get`, which reads the
/// value of a target, and either `put`, which writes it, or `exchange`, where exchanging is cheaper than writing; both
/// emit what an edit of the value emits.
template<typename T, typename V, typename H = QPointer<T>>
struct RyValueOf
{
    using Target = T;
    using Value = V;
    /// Holds the target, and is null when it is gone.
    using Holder = H;
    /// How many values of this kind a target has. Of each a step keeps the first one only.
    static constexpr int Slots = 1;
    static constexpr int slot = 0;
};

/// One of several values of the same kind.
template<typename T, typename V, int Count>
struct RySlotOf : RyValueOf<T, V>
{
    static constexpr int Slots = Count;
    int slot;
    explicit RySlotOf(int index) : slot(index) {}
};

/// A value of which every change counts: a step leads back over each.
template<typename T, typename V, typename H = QPointer<T>>
struct RyOrderedValueOf : RyValueOf<T, V, H>
{
    static constexpr int Slots = 0;
};

/// A value of a target as an undo item.
template<typename Which>
class RyValueChange : public RyUndoItem
{
public:
    /// Keeps the present value for undo. `target` is a pointer of any kind that `Which::Holder` takes.
    template<typename Pointer>
    static void record(const Pointer &target, Which which = {})
    {
        if (RyUndoStack *stack = ryUndoStack())
            stack->record<RyValueChange>(keyOf(std::to_address(target), which), target, which);
    }

    template<typename Pointer>
    RyValueChange(const Pointer &target, Which which)
        : m_target(target), m_value(which.get(std::as_const(*target))), m_which(which)
    {}

    bool isAlive() const override { return bool(m_target); }
    void swap() override
    {
        if (!m_target)
            return;
        typename Which::Target &target = *m_target;
        if constexpr (requires { m_which.exchange(target, m_value); }) {
            m_which.exchange(target, m_value);
        } else {
            typename Which::Value now = m_which.get(std::as_const(target));
            m_which.put(target, std::move(m_value));
            m_value = std::move(now);
        }
    }

private:
    static RyUndoKey keyOf(const void *target, const Which &which)
    {
        if constexpr (Which::Slots > 0)
            return {target, quintptr(&s_aspects[which.slot])};
        else
            return {};
    }

    // Their addresses tell the values of a target apart.
    static inline const char s_aspects[Which::Slots + 1] = {};

    typename Which::Holder m_target;
    typename Which::Value m_value;
    [[no_unique_address]] Which m_which;
};
