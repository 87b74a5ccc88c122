#pragma once

#include <QtGlobal>

#include <vector>

/// Adds up weights above zero by a key from 0 below a count; clearing costs as much as was added.
class RyWeightSums
{
public:
    struct Sum
    {
        int key;
        qint64 weight;
    };

    explicit RyWeightSums(int keyCount) : m_weights(size_t(keyCount), 0) {}

    void add(int key, qint64 weight)
    {
        qint64 &sum = m_weights[size_t(key)];
        if (sum == 0)
            m_keys.push_back(key);
        sum += weight;
    }
    /// The key with the largest sum of those that are accepted, the lowest of equal ones; -1 for none.
    template<typename Accepts>
    int largest(const Accepts &accepts) const
    {
        int best = -1;
        qint64 most = 0;
        for (const int key : m_keys) {
            const qint64 weight = m_weights[size_t(key)];
            if ((weight > most || (weight == most && key < best)) && accepts(key)) {
                best = key;
                most = weight;
            }
        }
        return best;
    }
    /// In the order in which keys came first.
    std::vector<Sum> sums() const
    {
        std::vector<Sum> sums;
        sums.reserve(m_keys.size());
        for (const int key : m_keys)
            sums.push_back({key, m_weights[size_t(key)]});
        return sums;
    }
    void clear()
    {
        for (const int key : m_keys)
            m_weights[size_t(key)] = 0;
        m_keys.clear();
    }

private:
    std::vector<qint64> m_weights; // by key; above 0 for those in the list
    std::vector<int> m_keys;
};
