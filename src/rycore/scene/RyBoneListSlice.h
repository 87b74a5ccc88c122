#pragma once

#include <vector>

class RyBone;

/// While one lives, `RySkeleton::getAllBones` gives only the bones at positions [first, first + count) of the full
/// list. A pick pass draws a large skeleton piece by piece this way. The innermost one counts. It also tells how long
/// the longest full list was that somebody asked for meanwhile.
class RyBoneListSlice
{
public:
    RyBoneListSlice(int first, int count);
    /// Cuts nothing, only listens.
    RyBoneListSlice();
    ~RyBoneListSlice();
    RyBoneListSlice(const RyBoneListSlice &) = delete;
    RyBoneListSlice &operator=(const RyBoneListSlice &) = delete;

    int longestList() const { return m_longest; }

    /// Cuts the bones appended to `list` from position `start` on.
    static void apply(std::vector<RyBone *> &list, std::size_t start);

private:
    RyBoneListSlice *m_outer;
    int m_first;
    int m_count;
    int m_longest = 0;
};
