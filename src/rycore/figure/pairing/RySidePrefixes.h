#pragma once

#include <QHash>
#include <QStringList>

#include <vector>

class RyNode;

enum class RySide { None, Left, Right };

/// What names begin with on either side, in the order in which they are tried, without regard to case.
struct RySidePrefixes
{
    QStringList left{QStringLiteral("left"), QStringLiteral("l")};
    QStringList right{QStringLiteral("right"), QStringLiteral("r")};

    /// The parts of a text between semicolons, empty ones dropped.
    static QStringList parse(const QString &text);
    /// Left where a prefix of both sides fits.
    RySide sideOf(const QString &name) const;
};

/// Finds opposites among nodes by prefixes of their names alone: "lForearm" belongs to "rForearm" or "rightForearm".
class RyPrefixLookup
{
public:
    RyPrefixLookup(const std::vector<RyNode *> &nodes, const RySidePrefixes &prefixes);

    /// The first node, in the order of the list, whose name is a prefix of the other side and what the first fitting
    /// prefix of `side` leaves of the name; by position, -1 for none. Without a side that of the name is taken.
    int find(const QString &name, RySide side) const;

private:
    int findBeyond(const QString &name, const QStringList &from, const QStringList &to) const;

    RySidePrefixes m_prefixes;
    QHash<QString, int> m_firstOf; // by folded name
};
