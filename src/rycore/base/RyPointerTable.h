#pragma once

#include <QtGlobal>

#include <algorithm>
#include <utility>
#include <vector>

/// Values by the addresses of what they belong to, in one flat table: nothing is allocated for a value of its own, and
/// a question reads one place of memory. Several values may belong to one address. Nothing behind an address is read,
/// and null is none.
template<typename Value>
class RyPointerTable
{
public:
    size_t size() const { return m_used; }

    void insert(const void *key, const Value &value)
    {
        if (2 * (m_used + 1) > m_places.size())
            resize(std::max<size_t>(16, 2 * m_places.size()));
        size_t place = home(key);
        while (m_places[place].key)
            place = next(place);
        m_places[place] = {key, value};
        ++m_used;
    }

    /// False where the address has a value already, which stays.
    bool insertNew(const void *key, const Value &value)
    {
        if (find(key))
            return false;
        insert(key, value);
        return true;
    }

    /// Does nothing where this value does not belong to the address.
    void remove(const void *key, const Value &value)
    {
        if (m_used == 0 || !key)
            return;
        size_t place = home(key);
        while (m_places[place].key && !(m_places[place].key == key && m_places[place].value == value))
            place = next(place);
        if (!m_places[place].key)
            return;
        --m_used;
        // What was put off to a later place by the one that goes moves up.
        for (size_t later = next(place); m_places[later].key; later = next(later)) {
            const size_t wanted = home(m_places[later].key);
            const size_t mask = m_places.size() - 1;
            if (((later - wanted) & mask) >= ((later - place) & mask)) {
                m_places[place] = m_places[later];
                place = later;
            }
        }
        m_places[place] = {};
    }

    /// One of the values of the address; null for none.
    const Value *find(const void *key) const
    {
        if (m_used == 0)
            return nullptr;
        for (size_t place = home(key); m_places[place].key; place = next(place)) {
            if (m_places[place].key == key)
                return &m_places[place].value;
        }
        return nullptr;
    }

    /// All values of the address, in no order.
    template<typename Visit>
    void visit(const void *key, const Visit &visit) const
    {
        if (m_used == 0)
            return;
        for (size_t place = home(key); m_places[place].key; place = next(place)) {
            if (m_places[place].key == key)
                visit(m_places[place].value);
        }
    }

private:
    struct Place
    {
        const void *key = nullptr;
        Value value{};
    };

    size_t next(size_t place) const { return (place + 1) & (m_places.size() - 1); }
    /// Addresses are multiples of 16, and what was allocated one after the other lies at even distances.
    size_t home(const void *key) const
    {
        return size_t((quint64(quintptr(key)) * 0x9e3779b97f4a7c15ull) >> 32) & (m_places.size() - 1);
    }
    void resize(size_t size)
    {
        const std::vector<Place> old = std::exchange(m_places, std::vector<Place>(size));
        for (const Place &place : old) {
            if (!place.key)
                continue;
            size_t free = home(place.key);
            while (m_places[free].key)
                free = next(free);
            m_places[free] = place;
        }
    }

    std::vector<Place> m_places; // a power of two of them, at most half of them taken
    size_t m_used = 0;
};
