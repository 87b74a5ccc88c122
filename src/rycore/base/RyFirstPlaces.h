#pragma once

#include <QHash>

#include <vector>

/// Where each key stands first in a list that somebody else keeps. A few questions after a change walk the list, so
/// that asking and changing in turn costs no more than that; the next one makes a table of hashes, which appending
/// keeps. The keys themselves are read from the list.
///
/// `keyAt(place)` gives the key of one of the `count` members. A key may become another one in place (a pointer that
/// is null when its object went), but never equal to one that was asked for before.
template<typename Key>
class RyFirstPlaces
{
public:
    /// The list changed in another way than by appending.
    void forget()
    {
        m_isKnown = false;
        m_walks = 0;
        m_slots.clear();
        m_used = 0;
    }

    /// A member with that key comes to stand at that place, the last one.
    template<typename KeyAt>
    void append(const Key &key, int place, const KeyAt &keyAt)
    {
        if (m_isKnown)
            insert(key, place, keyAt);
    }

    /// -1 for none.
    template<typename KeyAt>
    int find(const Key &key, int count, const KeyAt &keyAt) const
    {
        if (!m_isKnown && m_walks < MostWalks) {
            ++m_walks;
            for (int place = 0; place < count; ++place) {
                if (keyAt(place) == key)
                    return place;
            }
            return -1;
        }
        if (!m_isKnown)
            fill(count, keyAt);
        return m_slots[slotOf(key, hashOf(key), keyAt)].place;
    }

private:
    static constexpr int MostWalks = 8;
    static constexpr size_t LeastSlots = 16;

    struct Slot
    {
        quint32 hash = 0;
        int place = -1;
    };

    /// Hashes of numbers and pointers are often multiples of something. The seed is of this process: no file can be
    /// made of names that meet.
    static quint32 hashOf(const Key &key)
    {
        quint32 hash = qHash(key, uint(qGlobalQHashSeed()));
        hash = (hash ^ (hash >> 16)) * 0x45d9f3bu;
        hash = (hash ^ (hash >> 16)) * 0x45d9f3bu;
        return hash ^ (hash >> 16);
    }

    /// The slot with that key, or the free one for it.
    template<typename KeyAt>
    size_t slotOf(const Key &key, quint32 hash, const KeyAt &keyAt) const
    {
        size_t slot = hash & (m_slots.size() - 1);
        while (m_slots[slot].place >= 0 && !(m_slots[slot].hash == hash && keyAt(m_slots[slot].place) == key))
            slot = (slot + 1) & (m_slots.size() - 1);
        return slot;
    }

    /// Does nothing for a key that stands before.
    template<typename KeyAt>
    void insert(const Key &key, int place, const KeyAt &keyAt) const
    {
        if (2 * (m_used + 1) > m_slots.size())
            resize(2 * m_slots.size());
        const quint32 hash = hashOf(key);
        Slot &slot = m_slots[slotOf(key, hash, keyAt)];
        if (slot.place >= 0)
            return;
        slot = {hash, place};
        ++m_used;
    }

    void resize(size_t size) const
    {
        std::vector<Slot> larger(size);
        for (const Slot &old : m_slots) {
            if (old.place < 0)
                continue;
            size_t slot = old.hash & (size - 1);
            while (larger[slot].place >= 0)
                slot = (slot + 1) & (size - 1);
            larger[slot] = old;
        }
        m_slots.swap(larger);
    }

    template<typename KeyAt>
    void fill(int count, const KeyAt &keyAt) const
    {
        size_t size = LeastSlots;
        while (size < 2 * size_t(count))
            size *= 2;
        resize(size);
        for (int place = 0; place < count; ++place)
            insert(keyAt(place), place, keyAt);
        m_isKnown = true;
    }

    mutable std::vector<Slot> m_slots; // a power of two of them, at most half of them taken
    mutable size_t m_used = 0;
    mutable bool m_isKnown = false;
    mutable int m_walks = 0;
};
