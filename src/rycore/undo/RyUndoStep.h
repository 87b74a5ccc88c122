#pragma once

#include "rycore/undo/RyUndoItem.h"

#include <QDateTime>
#include <QHashFunctions>
#include <QString>

#include <memory>
#include <unordered_map>
#include <vector>

/// The changes of one step, or of one hold that is still open, in the order in which they were first made.
class RyUndoStep
{
public:
    RyUndoStep() = default;
    RyUndoStep(const RyUndoStep &) = delete;
    RyUndoStep &operator=(const RyUndoStep &) = delete;
    ~RyUndoStep();

    /// Whether a living item with that key is here; never for the null key.
    bool contains(const RyUndoKey &key) const;
    void append(const RyUndoKey &key, std::shared_ptr<RyUndoItem> item);
    /// Whether it holds values only, and none that the other step holds: either may be swapped before the other.
    bool isApartFrom(const RyUndoStep &other) const;
    /// Takes over the changes of a later step, keeping the first value of each key.
    void merge(RyUndoStep &later);
    /// Drops all items, newest first.
    void clear();

    void undo();
    void redo();
    /// Puts the values that the last `undo` or `redo` wrote in place again where a listener has changed them.
    void settle();

    bool isEmpty() const { return m_entries.empty(); }
    int entryCount() const { return int(m_entries.size()); }

    QString caption;
    QDateTime time;     // of its end
    quint64 number = 0; // in the order in which steps end, never used again

private:
    struct Entry
    {
        RyUndoKey key;
        std::shared_ptr<RyUndoItem> item; // an open hold and the log of restore points share it
    };
    struct KeyHash
    {
        size_t operator()(const RyUndoKey &key) const { return qHash(quintptr(key.target)) * 31u + qHash(key.aspect); }
    };
    void prepare();

    std::vector<Entry> m_entries;
    std::unordered_map<RyUndoKey, size_t, KeyHash> m_byKey;
};
