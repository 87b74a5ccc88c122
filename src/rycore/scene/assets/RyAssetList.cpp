#include "rycore/scene/assets/RyAssetList.h"

#include "rycore/base/RyElement.h"
#include "rycore/base/RyRefCounted.h"

#include <algorithm>
#include <utility>

void RyAssetList::add(RyElement *element)
{
    if (!element)
        return;
    auto *counted = dynamic_cast<RyRefCountedItem *>(element);
    if (counted)
        counted->ref();
    m_entries.push_back({element, counted});
}

RyElement *RyAssetList::at(int index) const
{
    return m_entries[size_t(index)].element;
}

bool RyAssetList::contains(const RyElement *element) const
{
    return element && std::any_of(m_entries.begin(), m_entries.end(),
                                  [element](const Entry &entry) { return entry.element == element; });
}

void RyAssetList::clear()
{
    std::vector<Entry> entries = std::exchange(m_entries, {});
    for (const Entry &entry : entries) {
        if (entry.element && entry.counted)
            entry.counted->unref();
    }
}
