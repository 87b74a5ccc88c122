#include "rycore/undo/RyUndoStack.h"

#include "rycore/undo/RyUndoObserver.h"
#include "rycore/undo/RyUndoStackSilence.h"
#include "rycore/undo/RyUndoStep.h"

#include <QScopedValueRollback>

#include <algorithm>

struct RyUndoStack::Private
{
    struct OpenHold
    {
        int id;
        std::shared_ptr<RyUndoStep> step;
    };

    std::vector<std::shared_ptr<RyUndoStep>> steps;
    std::vector<OpenHold> holds;
    std::unique_ptr<RyUndoObserver> observer;
    int index = 0;
    int lastHoldId = 0;
    quint64 lastStepNumber = 0;
    int locks = 0;
    int cleanIndex = 0; // -1: no step leads back to the saved state
    bool lastClean = true;
    bool swapping = false;               // undo, redo or the revert of a cancelled hold
    const RyUndoStep *swapped = nullptr; // while one is
    RyUndoStep *aside = nullptr;         // takes what listeners write meanwhile and `swapped` does not hold
    bool discarding = false;             // items are being deleted; what dies with them is no edit

    std::vector<OpenHold>::iterator findHold(int id)
    {
        return std::find_if(holds.begin(), holds.end(), [id](const OpenHold &hold) { return hold.id == id; });
    }

    void discard(std::vector<std::shared_ptr<RyUndoStep>> &&dropped)
    {
        const QScopedValueRollback<bool> guard(discarding, true);
        while (!dropped.empty())
            dropped.pop_back();
    }

    void push(const std::shared_ptr<RyUndoStep> &step)
    {
        std::vector<std::shared_ptr<RyUndoStep>> undone(steps.begin() + index, steps.end());
        steps.resize(size_t(index));
        if (cleanIndex > index)
            cleanIndex = -1;
        steps.push_back(step);
        ++index;
        discard(std::move(undone));
    }

    void noteSwap(const std::shared_ptr<RyUndoStep> &step, bool done)
    {
        if (observer)
            observer->noteSwap(step, done);
    }

    // A change that no step holds: none leads back to the saved state.
    void noteLooseChange()
    {
        if (observer)
            observer->noteLooseChange();
        cleanIndex = -1;
    }

    // Steps without a change do not lead away from the saved state.
    bool isClean() const
    {
        if (cleanIndex < 0)
            return false;
        for (const OpenHold &hold : holds) {
            if (!hold.step->isEmpty())
                return false;
        }
        for (int i = std::min(cleanIndex, index); i < std::max(cleanIndex, index); ++i) {
            if (!steps[size_t(i)]->isEmpty())
                return false;
        }
        return true;
    }
};

static RyUndoStack *globalStack = nullptr;
static bool globalStackDestroyed = false;

RyUndoStack::RyUndoStack(QObject *parent) : QObject(parent), d(std::make_unique<Private>()) {}

RyUndoStack::~RyUndoStack()
{
    d->observer.reset();
    d->discarding = true;
    while (!d->holds.empty())
        d->holds.pop_back();
    while (!d->steps.empty())
        d->steps.pop_back();
}

RyUndoStack *RyUndoStack::global()
{
    if (!globalStack && !globalStackDestroyed)
        globalStack = new RyUndoStack;
    return globalStack;
}

void RyUndoStack::destroyGlobal()
{
    globalStackDestroyed = true;
    // The stack stays reachable while its items go, since what they delete may ask for it.
    delete globalStack;
    globalStack = nullptr;
}

RyUndoStack *ryUndoStack()
{
    return RyUndoStack::global();
}

bool RyUndoStack::isRecording() const
{
    return !d->holds.empty() && d->locks == 0 && !d->swapping && !d->discarding;
}

bool RyUndoStack::isInUndoRedo() const
{
    return d->swapping;
}

bool RyUndoStack::isLocked() const
{
    return d->locks > 0;
}

bool RyUndoStack::isHoldOpen() const
{
    return !d->holds.empty();
}

unsigned RyUndoStack::wants(const RyUndoKey &key)
{
    if (d->discarding || RyUndoStackSilence::isActive())
        return 0;
    if (d->swapping)
        return d->swapped && !d->swapped->contains(key) && !d->aside->contains(key) ? unsigned(Aside) : 0u;
    emit aboutToChange();
    unsigned takers = 0;
    if (!isRecording()) {
        d->noteLooseChange();
        updateClean();
    } else if (!d->holds.back().step->contains(key)) {
        takers |= OpenHold;
    }
    return d->observer && d->observer->wants(key) ? takers | Observer : takers;
}

void RyUndoStack::append(const RyUndoKey &key, std::shared_ptr<RyUndoItem> item, unsigned takers)
{
    if (takers & Aside)
        d->aside->append(key, item);
    if (takers & Observer)
        d->observer->capture(key, item);
    if (!(takers & OpenHold))
        return;
    d->holds.back().step->append(key, std::move(item));
    if (d->lastClean)
        updateClean();
}

void RyUndoStack::record(std::unique_ptr<RyUndoItem> item)
{
    if (!item)
        return;
    const RyUndoKey key = item->key();
    if (const unsigned takers = wants(key)) {
        append(key, std::move(item), takers);
        return;
    }
    const QScopedValueRollback<bool> guard(d->discarding, true);
    item.reset();
}

void RyUndoStack::record(const RyUndoKey &key, const std::function<std::unique_ptr<RyUndoItem>()> &makeItem)
{
    const unsigned takers = wants(key);
    if (!takers)
        return;
    if (std::unique_ptr<RyUndoItem> item = makeItem())
        append(key, std::move(item), takers);
}

void RyUndoStack::swapStep(RyUndoStep &step, bool done)
{
    emit aboutToChange();
    const QScopedValueRollback<bool> guard(d->swapping, true);
    RyUndoStep aside;
    const QScopedValueRollback<const RyUndoStep *> swapped(d->swapped, &step);
    const QScopedValueRollback<RyUndoStep *> taker(d->aside, &aside);
    if (done)
        step.redo();
    else
        step.undo();
    // A listener that answers every value with another write would never come to rest.
    for (int pass = 0; pass < 8 && !aside.isEmpty(); ++pass) {
        RyUndoStep written;
        written.merge(aside);
        written.undo();
        step.settle();
        const QScopedValueRollback<bool> dropping(d->discarding, true);
        written.clear();
    }
    const QScopedValueRollback<bool> dropping(d->discarding, true);
    aside.clear();
}

/// Redoes the step behind the present state, or undoes the one before it.
void RyUndoStack::swapNext(bool done)
{
    const std::shared_ptr<RyUndoStep> step = d->steps[size_t(done ? d->index++ : --d->index)];
    d->noteSwap(step, done);
    swapStep(*step, done);
}

void RyUndoStack::undo()
{
    if (canUndo())
        goTo(d->index - 1);
}

void RyUndoStack::redo()
{
    if (canRedo())
        goTo(d->index + 1);
}

bool RyUndoStack::goTo(int index)
{
    if (index < 0 || index > count())
        return false;
    bool isSwapped = false;
    for (; d->index > index && canUndo(); isSwapped = true)
        swapNext(false);
    for (; d->index < index && canRedo(); isSwapped = true)
        swapNext(true);
    if (isSwapped) {
        updateClean();
        emit changed();
    }
    return d->index == index;
}

bool RyUndoStack::canUndo() const
{
    return d->index > 0 && d->holds.empty() && !d->swapping && !d->discarding;
}

bool RyUndoStack::canRedo() const
{
    return d->index < count() && d->holds.empty() && !d->swapping && !d->discarding;
}

int RyUndoStack::count() const
{
    return int(d->steps.size());
}

int RyUndoStack::index() const
{
    return d->index;
}

QString RyUndoStack::caption(int step) const
{
    return step >= 0 && step < count() ? d->steps[size_t(step)]->caption : QString();
}

QDateTime RyUndoStack::time(int step) const
{
    return step >= 0 && step < count() ? d->steps[size_t(step)]->time : QDateTime();
}

quint64 RyUndoStack::number(int step) const
{
    return step >= 0 && step < count() ? d->steps[size_t(step)]->number : 0;
}

QString RyUndoStack::undoText() const
{
    return caption(d->index - 1);
}

QString RyUndoStack::redoText() const
{
    return caption(d->index);
}

int RyUndoStack::entryCount(int step) const
{
    return step >= 0 && step < count() ? d->steps[size_t(step)]->entryCount() : 0;
}

void RyUndoStack::clearAll()
{
    const bool clean = d->isClean();
    const bool holdsChanges = std::any_of(d->holds.begin(), d->holds.end(),
                                          [](const Private::OpenHold &hold) { return !hold.step->isEmpty(); });
    if (d->observer && (!d->steps.empty() || holdsChanges))
        d->observer->noteClearedHistory();
    std::vector<std::shared_ptr<RyUndoStep>> dropped = std::move(d->steps);
    d->steps.clear();
    d->index = 0;
    for (Private::OpenHold &hold : d->holds)
        dropped.push_back(std::exchange(hold.step, std::make_shared<RyUndoStep>()));
    d->cleanIndex = clean ? 0 : -1;
    d->discard(std::move(dropped));
    updateClean();
    emit changed();
}

void RyUndoStack::setClean()
{
    // What an open hold has changed so far belongs to the saved state, which no step leads to.
    const bool inHold = std::any_of(d->holds.begin(), d->holds.end(),
                                    [](const Private::OpenHold &hold) { return !hold.step->isEmpty(); });
    d->cleanIndex = inHold ? -1 : d->index;
    if (d->observer)
        d->observer->noteSaved();
    updateClean();
}

bool RyUndoStack::isClean() const
{
    return d->isClean();
}

int RyUndoStack::cleanIndex() const
{
    return d->cleanIndex;
}

void RyUndoStack::updateClean()
{
    const bool clean = d->isClean();
    if (clean == d->lastClean)
        return;
    d->lastClean = clean;
    emit cleanChanged(clean);
}

void RyUndoStack::setLocked(bool locked)
{
    d->locks += locked ? 1 : -1;
}

int RyUndoStack::openHold()
{
    // What a listener does during undo or redo is part of it and makes no step.
    if (d->swapping)
        return 0;
    emit aboutToChange();
    const int id = ++d->lastHoldId;
    d->holds.push_back({id, std::make_shared<RyUndoStep>()});
    if (d->holds.size() == 1)
        emit changed();
    return id;
}

void RyUndoStack::acceptHold(int id, const QString &caption)
{
    const auto hold = d->findHold(id);
    if (hold == d->holds.end())
        return;
    const std::shared_ptr<RyUndoStep> step = hold->step;
    if (hold != d->holds.begin()) {
        const QScopedValueRollback<bool> guard(d->discarding, true);
        std::prev(hold)->step->merge(*step);
        d->holds.erase(hold);
        return;
    }
    d->holds.erase(hold);
    // A copy of its own: the text may lie in the data of a library that is unloaded before the stack goes.
    step->caption = QString(caption.constData(), caption.size());
    step->time = QDateTime::currentDateTime();
    step->number = ++d->lastStepNumber;
    d->push(step);
    updateClean();
    emit changed();
}

void RyUndoStack::cancelHold(int id)
{
    const auto hold = d->findHold(id);
    if (hold == d->holds.end())
        return;
    std::vector<std::shared_ptr<RyUndoStep>> shares;
    for (auto it = hold; it != d->holds.end(); ++it)
        shares.push_back(std::exchange(it->step, std::make_shared<RyUndoStep>()));
    d->holds.erase(hold);
    for (size_t i = shares.size(); i-- > 0;) {
        d->noteSwap(shares[i], false);
        swapStep(*shares[i], false);
    }
    d->discard(std::move(shares));
    updateClean();
    if (d->holds.empty())
        emit changed();
}

void RyUndoStack::forgetHold(int id)
{
    const auto hold = d->findHold(id);
    if (hold == d->holds.end())
        return;
    std::vector<std::shared_ptr<RyUndoStep>> dropped{hold->step};
    d->holds.erase(hold);
    if (!dropped.front()->isEmpty()) {
        d->noteLooseChange();
    }
    d->discard(std::move(dropped));
    updateClean();
    if (d->holds.empty())
        emit changed();
}

void RyUndoStack::setObserver(std::unique_ptr<RyUndoObserver> observer)
{
    d->observer = std::move(observer);
}

bool RyUndoStack::isIdle() const
{
    return d->holds.empty() && !d->swapping && !d->discarding;
}

RyUndoStack::History RyUndoStack::history() const
{
    return {d->steps, d->index, d->cleanIndex};
}

void RyUndoStack::exchangeHistory(const History &history, const std::function<void()> &swapAll)
{
    {
        const QScopedValueRollback<bool> guard(d->swapping, true);
        swapAll();
    }
    std::vector<std::shared_ptr<RyUndoStep>> dropped = std::exchange(d->steps, history.steps);
    d->index = history.index;
    d->cleanIndex = history.cleanIndex;
    d->discard(std::move(dropped));
    updateClean();
    emit changed();
}

void RyUndoStack::discardIn(const std::function<void()> &drop)
{
    const QScopedValueRollback<bool> guard(d->discarding, true);
    drop();
}
