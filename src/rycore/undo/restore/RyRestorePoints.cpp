#include "rycore/undo/restore/RyRestorePoints.h"

#include "rycore/undo/restore/RyUndoKeeper.h"

#include <QPointer>

#include <algorithm>
#include <iterator>
#include <utility>

RyRestorePoints *ryRestorePoints()
{
    // Made once, like the stack that owns them.
    static QPointer<RyRestorePoints> points;
    static bool made = false;
    RyUndoStack *stack = ryUndoStack();
    if (stack && !std::exchange(made, true)) {
        auto first = std::make_unique<RyRestorePoints>(stack);
        points = first.get();
        stack->setObserver(std::move(first));
    }
    return points;
}

RyRestorePoints::RyRestorePoints(RyUndoStack *stack) : m_stack(stack) {}

RyRestorePoints::~RyRestorePoints()
{
    clear();
}

void RyRestorePoints::setMost(int most)
{
    m_most = std::max(most, 0);
    dropTooMany();
}

const RyRestorePoints::Point *RyRestorePoints::at(int index) const
{
    for (auto point = m_points.rbegin(); point != m_points.rend(); ++point) {
        if (!point->pending && index-- == 0)
            return &*point;
    }
    return nullptr;
}

int RyRestorePoints::count() const
{
    return int(std::count_if(m_points.begin(), m_points.end(), [](const Point &point) { return !point.pending; }));
}

QString RyRestorePoints::caption(int index) const
{
    const Point *point = at(index);
    return point ? point->caption : QString();
}

QStringList RyRestorePoints::captions() const
{
    QStringList list;
    for (int i = 0; i < count(); ++i)
        list.append(caption(i));
    return list;
}

QString RyRestorePoints::text(int index) const
{
    const Point *point = at(index);
    if (!point)
        return {};
    return (point->wayBack ? tr("Undo Restoring to before %1") : tr("Restore to before %1")).arg(point->caption);
}

QDateTime RyRestorePoints::time(int index) const
{
    const Point *point = at(index);
    return point ? point->time : QDateTime();
}

RyRestorePoints::Place RyRestorePoints::add(const QString &caption, bool wayBack, bool pending, bool isWork)
{
    std::vector<std::function<void()>> kept;
    for (RyUndoKeeper *keeper : m_keepers)
        kept.push_back(keeper->keep());
    // A copy of its own: the text may lie in the data of a library that is unloaded before the point goes.
    const QString text(caption.constData(), caption.size());
    return m_points.insert(m_points.end(), {++m_lastId, text, QDateTime::currentDateTime(), m_log.mark(),
                                            m_stack.history(), std::move(kept), wayBack, pending, isWork, m_unkept});
}

RyRestorePoints::Place RyRestorePoints::find(int id)
{
    return std::find_if(m_points.begin(), m_points.end(), [id](const Point &point) { return point.id == id; });
}

void RyRestorePoints::drop(Place point)
{
    m_stack.discardIn([&] {
        const RyUndoLog::Mark mark = point->mark;
        m_points.erase(point);
        m_log.drop(mark);
    });
}

void RyRestorePoints::dropTooMany()
{
    // While a span lasts, only what was taken within it goes: with the span undone, the points from before must still
    // be there.
    Place from = m_points.begin();
    for (Place point = from; point != m_points.end(); ++point) {
        if (point->pending)
            from = std::next(point);
    }
    const auto kept = [](const Point &point) { return !point.pending; };
    const bool tooMany = std::count_if(from, m_points.end(), kept) > m_most;
    while (std::count_if(from, m_points.end(), kept) > m_most) {
        const Place oldest = std::find_if(from, m_points.end(), kept);
        if (oldest == from)
            ++from;
        drop(oldest);
    }
    if (tooMany)
        emit changed();
}

void RyRestorePoints::clear()
{
    if (m_points.empty())
        return;
    while (!m_points.empty())
        drop(std::prev(m_points.end()));
    emit changed();
}

bool RyRestorePoints::take(const QString &caption)
{
    if (m_most == 0 || !m_stack.isIdle())
        return false;
    add(caption, false, false);
    dropTooMany();
    emit changed();
    return true;
}

bool RyRestorePoints::restore(int index)
{
    const Point *wanted = at(index);
    if (!wanted || !m_stack.isIdle())
        return false;
    const int id = wanted->id;
    // Who takes a restoring back is again where the command that it is named after had not been run.
    const Place back = add(wanted->caption, !wanted->wayBack, false);
    swapBack(*back, *wanted);
    const Place used = find(id);
    if (used != m_points.end())
        drop(used);
    emit changed();
    return true;
}

void RyRestorePoints::swapBack(const Point &now, const Point &wanted)
{
    m_stack.exchangeHistory(wanted.history, [this, &now, &wanted] {
        m_log.swapBack(now.mark, wanted.mark, [this](RyUndoStep &step, bool done) { m_stack.swapStep(step, done); });
        for (const std::function<void()> &putBack : wanted.kept)
            putBack();
    });
}

int RyRestorePoints::begin(bool isWork)
{
    if (!m_stack.isIdle())
        return 0;
    const bool inCommand = std::any_of(m_points.begin(), m_points.end(),
                                       [](const Point &point) { return point.pending && !point.isWork; });
    return isWork || (m_most > 0 && !inCommand) ? add(QString(), false, true, isWork)->id : 0;
}

bool RyRestorePoints::end(int id, bool keep, const QString &caption)
{
    const Place point = find(id);
    if (point == m_points.end())
        return false;
    // Work may begin where no point may stay.
    if (!keep || (point->isWork && m_most == 0)) {
        drop(point);
        return false;
    }
    // Work stands before all that was taken within it.
    for (Place inner = std::next(point); point->isWork && inner != m_points.end();) {
        const Place each = inner++;
        if (!each->pending)
            drop(each);
    }
    point->pending = false;
    point->caption = QString(caption.constData(), caption.size());
    dropTooMany();
    emit changed();
    emit taken();
    return true;
}

bool RyRestorePoints::goBack(int id)
{
    const Place point = find(id);
    if (point == m_points.end() || !m_stack.isIdle())
        return false;
    m_unkept = point->unkept;
    const Place now = add(QString(), false, true, true);
    swapBack(*now, *point);
    const bool hadPoints = std::any_of(point, m_points.end(), [](const Point &each) { return !each.pending; });
    for (Place inner = std::next(point); inner != m_points.end();) {
        const Place each = inner++;
        if (!each->pending || each == now)
            drop(each);
    }
    drop(point);
    if (hadPoints)
        emit changed();
    return true;
}

void RyRestorePoints::noteSwap(const std::shared_ptr<RyUndoStep> &step, bool done)
{
    m_stack.discardIn([&] { m_log.noteSwap(step, done); });
}

void RyRestorePoints::noteSaved()
{
    // The saved state lies behind all points, and none of their histories leads to it.
    for (Point &point : m_points)
        point.history.cleanIndex = -1;
}

void RyRestorePoints::addKeeper(RyUndoKeeper *keeper)
{
    m_keepers.push_back(keeper);
}

void RyRestorePoints::removeKeeper(RyUndoKeeper *keeper)
{
    m_keepers.erase(std::remove(m_keepers.begin(), m_keepers.end(), keeper), m_keepers.end());
    clear();
}
