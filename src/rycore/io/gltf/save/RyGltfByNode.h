#pragma once

#include <deque>
#include <iterator>
#include <stdexcept>
#include <utility>
#include <vector>

/// Values by the place of their node in the file's list, as a std::map has them: visited by ascending places, and
/// staying where they are in memory. A question reads one place of a flat list instead of a way down a tree, which a
/// deep chain of bones misses the caches by.
template<typename Value>
class RyGltfByNode
{
public:
    using Entry = std::pair<const int, Value>;

    template<typename Visited>
    class Iterator
    {
    public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = Entry;
        using difference_type = std::ptrdiff_t;
        using pointer = Visited *;
        using reference = Visited &;

        Iterator(Entry *const *at, Entry *const *end) : m_at(at), m_end(end) { skipEmpty(); }
        Visited &operator*() const { return **m_at; }
        Visited *operator->() const { return *m_at; }
        Iterator &operator++()
        {
            ++m_at;
            skipEmpty();
            return *this;
        }
        Iterator operator++(int)
        {
            const Iterator before = *this;
            ++*this;
            return before;
        }
        bool operator==(const Iterator &other) const { return m_at == other.m_at; }

    private:
        void skipEmpty()
        {
            while (m_at != m_end && !*m_at)
                ++m_at;
        }

        Entry *const *m_at;
        Entry *const *m_end;
    };

    RyGltfByNode() = default;
    RyGltfByNode(const RyGltfByNode &) = delete;
    RyGltfByNode &operator=(const RyGltfByNode &) = delete;

    Iterator<Entry> begin() { return {first(), last()}; }
    Iterator<Entry> end() { return {last(), last()}; }
    Iterator<const Entry> begin() const { return {first(), last()}; }
    Iterator<const Entry> end() const { return {last(), last()}; }

    size_t count(int node) const { return entry(node) ? 1 : 0; }
    Iterator<Entry> find(int node) { return entry(node) ? Iterator<Entry>{first() + node, last()} : end(); }
    Iterator<const Entry> find(int node) const
    {
        return entry(node) ? Iterator<const Entry>{first() + node, last()} : end();
    }
    /// Throws std::out_of_range for a node that has no value.
    Value &at(int node) { return known(node).second; }
    const Value &at(int node) const { return known(node).second; }
    /// Where there is none yet, an empty one is made. `node` is not negative.
    Value &operator[](int node)
    {
        if (!entry(node)) {
            if (size_t(node) >= m_byNode.size())
                m_byNode.resize(size_t(node) + 1, nullptr);
            m_byNode[size_t(node)] = &m_entries.emplace_back(node, Value());
        }
        return at(node);
    }

private:
    Entry &known(int node) const
    {
        Entry *found = entry(node);
        if (!found)
            throw std::out_of_range("a node of the scene has no place in the file");
        return *found;
    }
    Entry *entry(int node) const
    {
        return node >= 0 && size_t(node) < m_byNode.size() ? m_byNode[size_t(node)] : nullptr;
    }
    Entry *const *first() const { return m_byNode.data(); }
    Entry *const *last() const { return first() + m_byNode.size(); }

    std::deque<Entry> m_entries;
    std::vector<Entry *> m_byNode;
};
