#pragma once

#include <QHash>

/// Where each key stands first in a list that somebody else keeps. A few questions after a change walk the list, so
/// that asking and changing in turn costs no more than that; the next one makes a hash, which appending keeps.
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
        m_places.clear();
    }

    /// A member with that key now stands at that place, the last one.
    void append(const Key &key, int place)
    {
        if (!m_isKnown)
            return;
        const auto known = m_places.constFind(key);
        if (known == m_places.constEnd())
            m_places.insert(key, place);
        else
            forget(); // a second one, or the first with the address of an object that went
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
        const auto known = m_places.constFind(key);
        return known != m_places.constEnd() && keyAt(*known) == key ? *known : -1;
    }

private:
    static constexpr int MostWalks = 8;

    template<typename KeyAt>
    void fill(int count, const KeyAt &keyAt) const
    {
        m_places.reserve(count);
        for (int place = count - 1; place >= 0; --place)
            m_places.insert(keyAt(place), place);
        m_isKnown = true;
    }

    mutable QHash<Key, int> m_places;
    mutable bool m_isKnown = false;
    mutable int m_walks = 0;
};
