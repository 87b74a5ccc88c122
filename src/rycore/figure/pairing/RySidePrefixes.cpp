#include "rycore/figure/pairing/RySidePrefixes.h"

#include "rycore/figure/pairing/RyNameMarks.h"
#include "rycore/scene/RyNode.h"

#include <algorithm>

/// The first that the name begins with; a null text for none.
static QString fitting(const QString &name, const QStringList &prefixes)
{
    const auto found = std::find_if(prefixes.begin(), prefixes.end(), [&name](const QString &prefix) {
        return name.startsWith(prefix, Qt::CaseInsensitive);
    });
    return found == prefixes.end() ? QString() : *found;
}

QStringList RySidePrefixes::parse(const QString &text)
{
    return text.split(QLatin1Char(';'), Qt::SkipEmptyParts);
}

RySide RySidePrefixes::sideOf(const QString &name) const
{
    if (!fitting(name, left).isNull())
        return RySide::Left;
    return fitting(name, right).isNull() ? RySide::None : RySide::Right;
}

void RyPrefixLookup::add(const RyNode &node, const RySkeleton *figure)
{
    Names &names = m_firstOf[figure];
    const QString name = RyNameMarks::folded(node.getName());
    if (!names.contains(name))
        names.insert(name, m_count);
    ++m_count;
}

int RyPrefixLookup::find(const QString &name, const RySkeleton *figure, RySide side) const
{
    if (side == RySide::None)
        side = m_prefixes.sideOf(name);
    const auto names = m_firstOf.constFind(figure);
    if (side == RySide::None || names == m_firstOf.constEnd())
        return -1;
    return side == RySide::Left ? findBeyond(*names, name, m_prefixes.left, m_prefixes.right)
                                : findBeyond(*names, name, m_prefixes.right, m_prefixes.left);
}

int RyPrefixLookup::findBeyond(const Names &names, const QString &name, const QStringList &from, const QStringList &to)
{
    const QString prefix = fitting(name, from);
    if (prefix.isNull())
        return -1;
    int first = -1;
    for (const QString &other : to) {
        const int found = names.value(RyNameMarks::folded(other + name.mid(prefix.length())), -1);
        if (found >= 0 && (first < 0 || found < first))
            first = found;
    }
    return first;
}
