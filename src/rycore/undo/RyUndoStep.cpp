#include "rycore/undo/RyUndoStep.h"

#include <algorithm>
#include <utility>

// A listener that answers every settled value with another write would never come to rest.
static constexpr int maxSettlePasses = 8;

RyUndoStep::~RyUndoStep()
{
    clear();
}

bool RyUndoStep::contains(const RyUndoKey &key) const
{
    if (key.isNull())
        return false;
    const auto found = m_byKey.find(key);
    return found != m_byKey.end() && m_entries[found->second].item->isAlive();
}

void RyUndoStep::append(const RyUndoKey &key, std::shared_ptr<RyUndoItem> item)
{
    if (!key.isNull())
        m_byKey[key] = m_entries.size();
    m_entries.push_back({key, std::move(item)});
}

bool RyUndoStep::isApartFrom(const RyUndoStep &other) const
{
    return std::all_of(m_entries.begin(), m_entries.end(),
                       [&](const Entry &entry) { return !entry.key.isNull() && !other.contains(entry.key); });
}

void RyUndoStep::merge(RyUndoStep &later)
{
    std::vector<Entry> entries = std::exchange(later.m_entries, {});
    later.m_byKey.clear();
    for (Entry &entry : entries) {
        if (!contains(entry.key))
            append(entry.key, std::move(entry.item));
    }
}

void RyUndoStep::clear()
{
    m_byKey.clear();
    std::vector<Entry> entries = std::exchange(m_entries, {});
    while (!entries.empty())
        entries.pop_back();
}

void RyUndoStep::undo()
{
    prepare();
    for (size_t i = m_entries.size(); i-- > 0;)
        m_entries[i].item->swap();
    settle();
}

void RyUndoStep::redo()
{
    prepare();
    for (const Entry &entry : m_entries)
        entry.item->swap();
    settle();
}

void RyUndoStep::prepare()
{
    for (const Entry &entry : m_entries)
        entry.item->prepare();
}

void RyUndoStep::settle()
{
    for (int pass = 0; pass < maxSettlePasses; ++pass) {
        bool moved = false;
        for (const Entry &entry : m_entries)
            moved |= entry.item->settle();
        if (!moved)
            return;
    }
}
