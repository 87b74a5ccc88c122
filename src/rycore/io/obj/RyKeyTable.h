#pragma once

#include <array>
#include <cstdint>
#include <vector>

/// Numbers keys of four numbers in the order in which they first come.
class RyKeyTable
{
public:
    using Key = std::array<std::int32_t, 4>;

    /// The number of a key; a new one gets the next.
    int numberOf(const Key &key)
    {
        if (2 * (m_keys.size() + 1) > m_slots.size())
            grow();
        int &number = m_slots[slotOf(key)];
        if (number < 0) {
            number = int(m_keys.size());
            m_keys.push_back(key);
        }
        return number;
    }
    const std::vector<Key> &keys() const { return m_keys; }

private:
    size_t slotOf(const Key &key) const
    {
        std::uint64_t hash = 0x9e3779b97f4a7c15ull;
        for (const std::int32_t part : key) {
            hash = (hash ^ std::uint32_t(part)) * 0xff51afd7ed558ccdull;
            hash ^= hash >> 32;
        }
        const size_t mask = m_slots.size() - 1;
        size_t slot = size_t(hash) & mask;
        while (m_slots[slot] >= 0 && m_keys[size_t(m_slots[slot])] != key)
            slot = (slot + 1) & mask;
        return slot;
    }
    void grow()
    {
        m_slots.assign(m_slots.empty() ? 64 : 2 * m_slots.size(), -1);
        for (size_t i = 0; i < m_keys.size(); ++i)
            m_slots[slotOf(m_keys[i])] = int(i);
    }

    std::vector<Key> m_keys;
    std::vector<int> m_slots; // a power of two of them, at most half of them taken
};
