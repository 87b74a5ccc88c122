#include "rycore/scene/RyBoneListSlice.h"

#include <algorithm>
#include <limits>

static RyBoneListSlice *s_innermost = nullptr;

RyBoneListSlice::RyBoneListSlice(int first, int count)
    : m_outer(s_innermost), m_first(std::max(first, 0)), m_count(std::max(count, 0))
{
    s_innermost = this;
}

RyBoneListSlice::RyBoneListSlice() : RyBoneListSlice(0, std::numeric_limits<int>::max()) {}

RyBoneListSlice::~RyBoneListSlice()
{
    s_innermost = m_outer;
}

void RyBoneListSlice::apply(std::vector<RyBone *> &list, std::size_t start)
{
    RyBoneListSlice *slice = s_innermost;
    if (!slice)
        return;
    const auto full = int(list.size() - start);
    slice->m_longest = std::max(slice->m_longest, full);
    const int first = std::min(slice->m_first, full);
    const int last = first + std::min(slice->m_count, full - first);
    const auto begin = list.begin() + std::ptrdiff_t(start);
    list.erase(begin + last, list.end());
    list.erase(begin, begin + first);
}
