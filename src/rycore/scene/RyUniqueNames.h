#pragma once

#include <QHash>
#include <QSet>
#include <QString>

/// Finds names (or labels) that are not taken yet, many of them in a row without beginning anew each time.
class RyUniqueNames
{
public:
    enum Kind { Names, Labels };
    explicit RyUniqueNames(Kind kind) : m_kind(kind) {}

    void add(const QString &taken) { m_taken.insert(taken); }
    /// A free text comes back unchanged; otherwise its number is stripped and the first free one from 2 is appended
    /// ("Bone2", label "Bone 2"). What comes back is not taken by it.
    QString find(const QString &text);

private:
    Kind m_kind;
    QSet<QString> m_taken;
    QHash<QString, int> m_numbers; // by stem: none below it is free
};
