#include "rycore/math/RyIndexList.h"

#include <algorithm>

void RyIndexList::addSortedIndex(int index)
{
    const auto place = std::lower_bound(m_indices.begin(), m_indices.end(), index);
    if (place == m_indices.end() || *place != index)
        m_indices.insert(place, index);
}
