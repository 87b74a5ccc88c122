#pragma once

#include "rycore/base/RyRefCounted.h"
#include "rycore/undo/RyUndoStack.h"

#include <QPointer>

#include <algorithm>
#include <vector>

/// A member's place in a list of its owner, -1 for none, as an undo item. It counts the member, and every change of the
/// list counts. `List` says what list: `of` gives it, `has` is false for what is not in it, `take` and `insert` do and
/// emit what an edit does and emits, for a member that `mayMove`.
template<typename List>
class RyPlaceChange : public RyUndoItem
{
public:
    using Owner = typename List::Owner;
    using Member = typename List::Member;

    /// Keeps the place that the member has at present.
    static void record(Owner *owner, Member *member, int index)
    {
        if (RyUndoStack *stack = ryUndoStack())
            stack->record<RyPlaceChange>({}, owner, member, index);
    }

    RyPlaceChange(Owner *owner, Member *member, int index) : m_owner(owner), m_member(member), m_index(index) {}

    void swap() override
    {
        Member *member = m_member.get();
        if (!m_owner || !member || !List::mayMove(*m_owner, *member))
            return;
        const int now = List::has(*m_owner, *member) ? placeIn(List::of(*m_owner), member) : -1;
        const bool isLast = now + 1 == int(List::of(*m_owner).size());
        if (now >= 0)
            List::take(*m_owner, member, now);
        const int wanted = m_index;
        if (wanted >= 0)
            List::insert(*m_owner, member, wanted);
        m_index = now == m_lastPlace && isLast ? m_wanted : now;
        m_wanted = wanted;
        m_lastPlace = std::min(wanted, int(List::of(*m_owner).size()) - 1);
        List::moved(*m_owner);
    }

private:
    /// Where it was put, unless others came or went before it; those that came last mostly go first.
    int placeIn(const std::vector<Member *> &list, const Member *member) const
    {
        if (m_lastPlace >= 0 && m_lastPlace < int(list.size()) && list[size_t(m_lastPlace)] == member)
            return m_lastPlace;
        return int(list.rend() - std::find(list.rbegin(), list.rend(), member)) - 1;
    }

    QPointer<Owner> m_owner;
    RyRef<Member> m_member;
    int m_index;
    // Where the last swap put it. A shorter list took it at its end and not where it was wanted, and a swap back and
    // forth must not forget that as long as it is the last one there: the next list may be the longer one again.
    int m_lastPlace = -1;
    int m_wanted = -1;
};

/// What most lists have in common.
template<typename O, typename M>
struct RyListOf
{
    using Owner = O;
    using Member = M;
    static bool mayMove(const O &, const M &) { return true; }
    static bool has(const O &, const M &) { return true; }
    static void moved(O &) {}
};
