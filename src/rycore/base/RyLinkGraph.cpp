#include "rycore/base/RyLinkGraph.h"

#include "rycore/base/RyERCLink.h"
#include "rycore/base/RyPointerTable.h"

#include <algorithm>

namespace {

/// A search along links in one direction, one link at a time.
class Search
{
public:
    Search(const RyFloatProperty *start, bool down) : m_down(down), m_found{start} { m_before.insert(start, nullptr); }

    bool hasFound(const RyFloatProperty *property) const { return m_before.find(property); }
    bool isDone()
    {
        while (m_at < m_found.size() && m_link == links().size()) {
            ++m_at;
            m_link = 0;
        }
        return m_at == m_found.size();
    }
    /// The next property, which may be known; only while the search is not done.
    const RyFloatProperty *step()
    {
        const RyFloatProperty *at = m_found[m_at];
        const RyERCLink *link = links()[m_link++];
        const RyFloatProperty *next = m_down ? link->getControlled() : link->getController();
        if (m_before.insertNew(next, at))
            m_found.push_back(next);
        return next;
    }
    /// From a property that was found back to the start.
    std::vector<const RyFloatProperty *> wayBack(const RyFloatProperty *property) const
    {
        std::vector<const RyFloatProperty *> way;
        for (; property; property = *m_before.find(property))
            way.push_back(property);
        return way;
    }

private:
    const std::vector<RyERCLink *> &links() const
    {
        return m_down ? m_found[m_at]->getControlledLinks() : m_found[m_at]->getControllerLinks();
    }

    bool m_down;
    std::vector<const RyFloatProperty *> m_found;
    RyPointerTable<const RyFloatProperty *> m_before;
    size_t m_at = 0;
    size_t m_link = 0;
};

} // namespace

static int s_linkCount = 0;

int RyLinkGraph::linkCount()
{
    return s_linkCount;
}

void RyLinkGraph::addToLinkCount(int links)
{
    s_linkCount += links;
}

std::vector<RyFloatProperty *> RyLinkGraph::dependents(RyFloatProperty *property)
{
    struct Visit
    {
        RyFloatProperty *property;
        size_t left; // links that are still to be followed, the last ones first
    };
    std::vector<RyFloatProperty *> order;
    RyPointerTable<bool> seen;
    seen.insert(property, true);
    std::vector<Visit> path{{property, property->getControlledLinks().size()}};
    while (!path.empty()) {
        Visit &visit = path.back();
        if (visit.left == 0) {
            order.push_back(visit.property);
            path.pop_back();
            continue;
        }
        RyFloatProperty *next = visit.property->getControlledLinks()[--visit.left]->getControlled();
        if (seen.insertNew(next, true))
            path.push_back({next, next->getControlledLinks().size()});
    }
    std::reverse(order.begin(), order.end());
    return order;
}

std::vector<const RyFloatProperty *> RyLinkGraph::findWay(const RyFloatProperty *from, const RyFloatProperty *to)
{
    if (from == to)
        return {from};
    Search down(from, true);
    Search up(to, false);
    const auto join = [&](const RyFloatProperty *meeting) {
        std::vector<const RyFloatProperty *> way = down.wayBack(meeting);
        std::reverse(way.begin(), way.end());
        const std::vector<const RyFloatProperty *> rest = up.wayBack(meeting);
        way.insert(way.end(), rest.begin() + 1, rest.end());
        return way;
    };
    while (!down.isDone() && !up.isDone()) {
        if (const RyFloatProperty *next = down.step(); up.hasFound(next))
            return join(next);
        if (const RyFloatProperty *next = up.step(); down.hasFound(next))
            return join(next);
    }
    return {};
}
