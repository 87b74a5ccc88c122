#include "ryhost/commands/unsavedChanges.h"

#include "rycore/undo/RyUndoStack.h"
#include "ryhost/commands/SavedState.h"
#include "ryhost/commands/timeText.h"

#include <QCoreApplication>
#include <QStringList>

#include <algorithm>
#include <vector>

namespace {

struct Unsaved
{
    Q_DECLARE_TR_FUNCTIONS(UnsavedChanges)
};

constexpr int MostCaptions = 5;

/// How the present state differs from the saved one.
struct Difference
{
    std::vector<QString> captions; // of the steps done since, or taken back
    bool areUndone = false;        // taken back
    bool noWayBack = false;        // no step leads to the saved state

    Difference(const RyUndoStack &stack, const SavedState &saved)
        : areUndone(stack.cleanIndex() > stack.index()), noWayBack(stack.cleanIndex() < 0)
    {
        const int first = noWayBack ? 0 : std::min(stack.cleanIndex(), stack.index());
        for (int i = first; i < std::max(stack.cleanIndex(), stack.index()); ++i) {
            if (stack.entryCount(i) > 0 && (!noWayBack || stack.number(i) > saved.lastStep))
                captions.push_back(stack.caption(i));
        }
    }
};

QString editsText(int count)
{
    return count == 1 ? Unsaved::tr("1 edit") : Unsaved::tr("%n edits", nullptr, count);
}

/// "Bend, Move (2 times)": what follows itself is said once, of many the latest.
QString captionsText(const std::vector<QString> &captions)
{
    std::vector<std::pair<QString, int>> runs;
    for (const QString &caption : captions) {
        if (runs.empty() || runs.back().first != caption)
            runs.emplace_back(caption, 0);
        ++runs.back().second;
    }
    QStringList texts;
    int earlier = 0;
    for (size_t i = 0; i < runs.size(); ++i) {
        if (i + MostCaptions < runs.size())
            earlier += runs[i].second;
        else
            texts.append(runs[i].second == 1
                             ? runs[i].first
                             : Unsaved::tr("%1 (%n times)", nullptr, runs[i].second).arg(runs[i].first));
    }
    if (earlier > 0)
        texts.prepend(earlier == 1 ? Unsaved::tr("1 earlier") : Unsaved::tr("%n earlier", nullptr, earlier));
    return texts.join(QStringLiteral(", "));
}

} // namespace

bool hasEdits(const RyUndoStack &stack, const SavedState &saved)
{
    return !stack.isClean() && (saved.kind != SavedState::Imported || !Difference(stack, saved).captions.empty());
}

QString unsavedCountText(const RyUndoStack &stack, const SavedState &saved)
{
    if (stack.isClean())
        return {};
    const Difference difference(stack, saved);
    if (difference.captions.empty())
        return saved.kind == SavedState::Imported || saved.kind == SavedState::Recovered ? Unsaved::tr("unsaved")
                                                                                         : Unsaved::tr("changed");
    const QString edits = editsText(int(difference.captions.size()));
    if (difference.areUndone)
        return Unsaved::tr("%1 taken back").arg(edits);
    return difference.noWayBack ? Unsaved::tr("%1 and more").arg(edits) : edits;
}

QString unsavedChangesText(const RyUndoStack &stack, const SavedState &saved)
{
    if (stack.isClean())
        return {};
    const Difference difference(stack, saved);
    const QString since = saved.text();
    const QString edits = editsText(int(difference.captions.size()));
    const QString captions = captionsText(difference.captions);
    // All of these is unsaved, not only the edits since.
    if (saved.kind == SavedState::Recovered) {
        const QString all =
            Unsaved::tr("Unsaved work of before a crash, brought back at %1").arg(timeTextOf(saved.time));
        return difference.captions.empty() ? Unsaved::tr("%1.").arg(all)
                                           : Unsaved::tr("%1, and %2 since: %3.").arg(all, edits, captions);
    }
    if (saved.kind == SavedState::Imported) {
        const QString all = Unsaved::tr("Read from %1 at %2, in no file yet").arg(saved.file, timeTextOf(saved.time));
        return difference.captions.empty() ? Unsaved::tr("%1.").arg(all)
                                           : Unsaved::tr("%1, and %2 since: %3.").arg(all, edits, captions);
    }
    if (difference.captions.empty())
        return Unsaved::tr("Changed since %1 by what leaves no undo step.").arg(since);
    if (difference.areUndone)
        return Unsaved::tr("%1 taken back since %2: %3.").arg(edits, since, captions);
    if (difference.noWayBack)
        return Unsaved::tr("%1 since %2: %3. No undo step leads back to it.").arg(edits, since, captions);
    return Unsaved::tr("%1 since %2: %3.").arg(edits, since, captions);
}
