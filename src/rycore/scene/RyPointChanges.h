#pragma once

#include <QtGlobal>

#include <vector>

/// Which of a row of points changed, and since when: whoever keeps a copy (a buffer of the graphics card) renews only
/// what differs. Kept for groups of 16 points. Revisions are numbers of the process, never used twice, so that those of
/// different rows can be compared.
class RyPointChanges
{
public:
    struct Range
    {
        int first = 0;
        int count = 0;
        bool operator==(const Range &) const = default;
    };
    static constexpr int GroupSize = 16;

    /// A number above all that were given before.
    static quint64 nextRevision();

    /// Grows with every change; 0 before the first one.
    quint64 revision() const { return m_revision; }
    /// All points changed, and there are so many.
    void markAll(int pointCount);
    /// Opens a revision; what is marked until the next one belongs to it.
    void begin();
    void mark(int first, int count);
    /// Ascending, apart from each other; all points for a revision that these points never had a part in.
    std::vector<Range> since(quint64 revision) const;

private:
    int m_pointCount = 0;
    quint64 m_revision = 0;
    quint64 m_allRevision = 0;
    std::vector<quint64> m_groups; // the revision that each group changed in last
};
