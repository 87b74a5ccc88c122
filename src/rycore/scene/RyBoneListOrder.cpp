#include "rycore/scene/RyBoneListOrder.h"

#include <algorithm>

static RyBoneListOrder *s_innermost = nullptr;

RyBoneListOrder::RyBoneListOrder(Order order) : m_outer(s_innermost), m_order(order)
{
    s_innermost = this;
}

RyBoneListOrder::~RyBoneListOrder()
{
    s_innermost = m_outer;
}

int RyBoneListOrder::columnLength(int column, int count)
{
    return count / ColumnCount + (column < count % ColumnCount ? 1 : 0);
}

int RyBoneListOrder::columnStart(int column, int count)
{
    return column * (count / ColumnCount) + std::min(column, count % ColumnCount);
}

void RyBoneListOrder::apply(std::vector<RyBone *> &list, std::size_t start)
{
    RyBoneListOrder *order = s_innermost;
    if (!order)
        return;
    const std::size_t count = list.size() - start;
    order->m_longest = std::max(order->m_longest, int(count));
    if (order->m_order == Nothing) {
        list.resize(start);
    } else if (order->m_order == Columns) {
        const std::vector<RyBone *> tree(list.begin() + std::ptrdiff_t(start), list.end());
        std::size_t place = start;
        for (std::size_t column = 0; column < ColumnCount; ++column) {
            for (std::size_t bone = column; bone < count; bone += ColumnCount)
                list[place++] = tree[bone];
        }
    }
}
