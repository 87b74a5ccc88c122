#pragma once

#include "ItemFamily.h"

#include <QSet>

#include <random>

/// What an edit has to leave in a step.
struct Recorded
{
    QSet<QString> values; // each is there once, however often it was written
    int changes = 0;      // each counts

    /// Takes over what an inner hold recorded. A value whose target is gone is not found
    /// again: recorded by both, it is there twice.
    template<typename IsDead>
    void merge(const Recorded &later, IsDead isDead)
    {
        for (const QString &value : later.values)
            changes += values.contains(value) && isDead(value);
        values |= later.values;
        changes += later.changes;
    }
    int entryCount() const { return int(values.size()) + changes; }
};

/// A kind of value that undo knows, with an edit that changes it at random.
struct ItemKind
{
    const char *name;
    bool needsScene; // only for families in the scene
    void (*edit)(ItemFamily &family, std::mt19937 &random, Recorded &recorded);
};

const std::vector<ItemKind> &itemKinds();
