#pragma once

#include <QHash>
#include <QStringList>

#include <vector>

class RyNode;
class RySkeleton;

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

/// Finds opposites among the nodes of one figure by prefixes of their names alone: "lForearm" belongs to "rForearm" or
/// "rightForearm".
class RyPrefixLookup
{
public:
    explicit RyPrefixLookup(const RySidePrefixes &prefixes) : m_prefixes(prefixes) {}
    /// The next node of a list, and the figure that it is a part of.
    void add(const RyNode &node, const RySkeleton *figure);

    /// The first node of the figure, in the order of the list, whose name is a prefix of the other side and what the
    /// first fitting prefix of `side` leaves of the name; by position, -1 for none. Without a side that of the name is
    /// taken.
    int find(const QString &name, const RySkeleton *figure, RySide side) const;

private:
    using Names = QHash<QString, int>; // folded
    static int findBeyond(const Names &names, const QString &name, const QStringList &from, const QStringList &to);

    RySidePrefixes m_prefixes;
    QHash<const RySkeleton *, Names> m_firstOf;
    int m_count = 0;
};
