#pragma once

#include <cstddef>
#include <vector>

class RyBone;

/// While one lives, `RySkeleton::getAllBones` lists the bones in its order. The places of bones become colour codes in
/// a pick pass, and two orders tell more bones apart than one code can. It also tells how long the longest list was
/// that somebody asked for meanwhile. The innermost one counts.
class RyBoneListOrder
{
public:
    enum Order {
        Tree,    // the list as it is
        Nothing, // no bones at all
        Columns  // bones 0, 256, 512 and so on, then 1, 257 and so on
    };
    explicit RyBoneListOrder(Order order);
    ~RyBoneListOrder();
    RyBoneListOrder(const RyBoneListOrder &) = delete;
    RyBoneListOrder &operator=(const RyBoneListOrder &) = delete;

    int longestList() const { return m_longest; }

    /// Orders the bones appended to `list` from position `start` on.
    static void apply(std::vector<RyBone *> &list, std::size_t start);

    static constexpr int ColumnCount = 256;
    /// How many of `count` bones are in a column, and the place of its first one where columns are listed.
    static int columnLength(int column, int count);
    static int columnStart(int column, int count);

private:
    RyBoneListOrder *m_outer;
    Order m_order;
    int m_longest = 0;
};
