#include "rycore/undo/restore/RyUndoLog.h"

#include <iterator>
#include <vector>

RyUndoLog::Mark RyUndoLog::mark()
{
    ++m_marks;
    return m_entries.insert(m_entries.end(), Entry());
}

void RyUndoLog::drop(Mark mark)
{
    --m_marks;
    const Mark right = m_entries.erase(mark);
    if (m_marks == 0)
        m_entries.clear();
    else
        join(right);
    while (!m_entries.empty() && m_entries.front().step)
        m_entries.pop_front();
}

bool RyUndoLog::canGrow(const Entry &entry)
{
    // Not one that going back has logged a second time.
    return entry.captured && entry.done && entry.step.use_count() == 1;
}

bool RyUndoLog::areOpposite(const Entry &a, const Entry &b)
{
    return a.step && a.step == b.step && a.done != b.done;
}

bool RyUndoLog::isOpen() const
{
    return !m_entries.empty() && canGrow(m_entries.back());
}

bool RyUndoLog::wants(const RyUndoKey &key) const
{
    return m_marks > 0 && !(isOpen() && m_entries.back().step->contains(key));
}

void RyUndoLog::capture(const RyUndoKey &key, std::shared_ptr<RyUndoItem> item)
{
    if (!isOpen())
        m_entries.push_back({std::make_shared<RyUndoStep>(), true, true});
    m_entries.back().step->append(key, std::move(item));
}

void RyUndoLog::noteSwap(const std::shared_ptr<RyUndoStep> &step, bool done)
{
    if (m_marks > 0 && !step->isEmpty())
        join(m_entries.insert(m_entries.end(), {step, done, false}));
}

void RyUndoLog::join(Mark right)
{
    if (right == m_entries.end() || right == m_entries.begin())
        return;
    const Mark left = std::prev(right);
    if (!left->step || !right->step)
        return;
    if (areOpposite(*left, *right)) {
        m_entries.erase(left);
        join(m_entries.erase(right));
    } else if (canGrow(*left) && canGrow(*right)) {
        left->step->merge(*right->step);
        m_entries.erase(right);
    } else {
        joinAround(left, right);
    }
}

void RyUndoLog::joinAround(Mark between, Mark right)
{
    if (between == m_entries.begin())
        return;
    const Mark left = std::prev(between);
    if (!areOpposite(*left, *right) || !canGrow(*between) || !between->step->isApartFrom(*right->step))
        return;
    m_entries.erase(left);
    const Mark next = m_entries.erase(right);
    join(between);
    join(next);
}

void RyUndoLog::swapBack(Mark from, Mark mark, const std::function<void(RyUndoStep &step, bool done)> &swap)
{
    // What has been gone back over and forth cancels out, or going back often would double the log each time.
    std::vector<Entry> way;
    for (Mark entry = from; entry != mark;) {
        --entry;
        if (!entry->step)
            continue;
        if (!way.empty() && way.back().step == entry->step && way.back().done == entry->done)
            way.pop_back();
        else
            way.push_back({entry->step, !entry->done, entry->captured});
    }
    for (const Entry &entry : way) {
        swap(*entry.step, entry.done);
        m_entries.push_back(entry);
    }
}
