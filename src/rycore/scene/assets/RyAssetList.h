#pragma once

#include <QPointer>

#include <vector>

class RyElement;
class RyRefCountedItem;

/// Elements that a load or a run of duplicating made. Counted ones are held while they are in the list; those that
/// nothing else holds go with it.
class RyAssetList
{
public:
    RyAssetList() = default;
    ~RyAssetList() { clear(); }
    RyAssetList(const RyAssetList &) = delete;
    RyAssetList &operator=(const RyAssetList &) = delete;

    /// Null does nothing.
    void add(RyElement *element);
    /// Elements that were deleted meanwhile count too.
    int count() const { return int(m_entries.size()); }
    /// Null for an element that was deleted meanwhile.
    RyElement *at(int index) const;
    bool contains(const RyElement *element) const;
    void clear();

private:
    struct Entry
    {
        QPointer<RyElement> element;
        RyRefCountedItem *counted;
    };
    std::vector<Entry> m_entries;
};
