#include "rycore/base/RyTextDistance.h"

#include <algorithm>
#include <numeric>
#include <vector>

int ryTextDistance(const QString &a, const QString &b)
{
    // Rows of the table: now[j] is the distance of the first i letters of `a` to the first j of `b`.
    std::vector<int> beforeLast(size_t(b.size()) + 1), last(beforeLast.size()), now(beforeLast.size());
    std::iota(now.begin(), now.end(), 0);
    for (int i = 1; i <= a.size(); ++i) {
        beforeLast.swap(last);
        last.swap(now);
        now[0] = i;
        for (int j = 1; j <= b.size(); ++j) {
            const size_t at = size_t(j);
            const int changed = last[at - 1] + (a.at(i - 1) == b.at(j - 1) ? 0 : 1);
            now[at] = std::min({changed, last[at] + 1, now[at - 1] + 1});
            if (i > 1 && j > 1 && a.at(i - 1) == b.at(j - 2) && a.at(i - 2) == b.at(j - 1))
                now[at] = std::min(now[at], beforeLast[at - 2] + 1);
        }
    }
    return now.back();
}
