#include "rycore/scene/RyPointChanges.h"

#include <algorithm>
#include <atomic>

quint64 RyPointChanges::nextRevision()
{
    static std::atomic<quint64> last{0};
    return ++last;
}

void RyPointChanges::markAll(int pointCount)
{
    m_pointCount = pointCount;
    m_revision = m_allRevision = nextRevision();
    m_groups.assign(size_t((pointCount + GroupSize - 1) / GroupSize), m_revision);
}

void RyPointChanges::begin()
{
    m_revision = nextRevision();
}

void RyPointChanges::mark(int first, int count)
{
    if (count <= 0)
        return;
    const auto begin = m_groups.begin() + first / GroupSize;
    std::fill(begin, m_groups.begin() + (first + count - 1) / GroupSize + 1, m_revision);
}

std::vector<RyPointChanges::Range> RyPointChanges::since(quint64 revision) const
{
    std::vector<Range> ranges;
    if (revision < m_allRevision) {
        if (m_pointCount > 0)
            ranges.push_back({0, m_pointCount});
        return ranges;
    }
    const int groups = int(m_groups.size());
    for (int group = 0; group < groups; ++group) {
        if (m_groups[size_t(group)] <= revision)
            continue;
        const int first = group * GroupSize;
        const int count = std::min(GroupSize, m_pointCount - first);
        if (!ranges.empty() && ranges.back().first + ranges.back().count == first)
            ranges.back().count += count;
        else
            ranges.push_back({first, count});
    }
    return ranges;
}
