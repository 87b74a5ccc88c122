#include "rycore/base/RyTextDistance.h"

#include <algorithm>
#include <numeric>
#include <vector>

int ryTextDistance(const QString &a, const QString &b)
{
    // One row of the table at a time: row[j] is the distance of the first i letters of `a` to the first j of `b`.
    std::vector<int> row(size_t(b.size()) + 1);
    std::iota(row.begin(), row.end(), 0);
    for (int i = 1; i <= a.size(); ++i) {
        int diagonal = row[0];
        row[0] = i;
        for (int j = 1; j <= b.size(); ++j) {
            const int changed = diagonal + (a.at(i - 1) == b.at(j - 1) ? 0 : 1);
            diagonal = row[size_t(j)];
            row[size_t(j)] = std::min({changed, row[size_t(j)] + 1, row[size_t(j) - 1] + 1});
        }
    }
    return row.back();
}
