#include "rycore/base/RyNearTexts.h"

#include "rycore/base/RyTextDistance.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace {

/// Shorter parts are in everything.
constexpr int ShortestPart = 3;
constexpr int MostNamed = 5;

bool isPart(const QString &part, const QString &whole)
{
    return part.size() >= ShortestPart && whole.contains(part);
}

} // namespace

QStringList ryNearTexts(const QString &wanted, const QStringList &known)
{
    const QString text = wanted.toLower();
    const auto letters = std::count_if(text.begin(), text.end(), [](QChar c) { return c.isLetterOrNumber(); });
    const int mostSlips = std::min(3, int(letters) / 3);
    std::vector<std::pair<int, QString>> near;
    for (const QString &each : known) {
        const QString other = each.toLower();
        const int distance = ryTextDistance(text, other);
        if (isPart(text, other) || isPart(other, text) || distance <= mostSlips)
            near.emplace_back(distance, each);
    }
    std::stable_sort(near.begin(), near.end(), [](const auto &a, const auto &b) { return a.first < b.first; });
    QStringList texts;
    for (const auto &[distance, each] : near) {
        if (!texts.contains(each))
            texts.append(each);
    }
    return texts;
}

QString ryDidYouMean(const QStringList &near, const QString &mark)
{
    if (near.isEmpty())
        return {};
    QStringList named;
    for (const QString &each : near.mid(0, near.size() <= MostNamed + 1 ? near.size() : MostNamed))
        named.append(mark + each + mark);
    if (named.size() < near.size())
        named.append(QStringLiteral("one of %1 more").arg(near.size() - named.size()));
    const QString last = named.takeLast();
    return QStringLiteral(" (did you mean %1?)")
        .arg(named.isEmpty() ? last : named.join(QStringLiteral(", ")) + QStringLiteral(" or ") + last);
}
