#include "rycore/base/RyERCLink.h"

#include "rycore/base/RyLinkGraph.h"
#include "rycore/undo/RyValueChange.h"

#include <QStringList>

#include <algorithm>
#include <utility>

/// Whether a link is in force. While it is not, undo steps alone hold it.
struct RyERCLink::AttachedValue : RyValueOf<RyERCLink, bool, std::shared_ptr<RyERCLink>>
{
    static bool get(const RyERCLink &link) { return link.isAttached(); }
    static void put(RyERCLink &link, bool attached)
    {
        if (attached && !link.isAttached())
            attach(link.shared_from_this());
        else if (!attached && link.isAttached())
            link.detach();
    }
};

static int s_deletions = 0;
static std::vector<QPointer<RyFloatProperty>> s_waiting; // for the end of them

static RyERCLink *findLink(const RyFloatProperty *controller, const RyFloatProperty *controlled)
{
    for (RyERCLink *link : controlled->getControllerLinks()) {
        if (link->getController() == controller)
            return link;
    }
    return nullptr;
}

RyERCLink::RyERCLink(RyFloatProperty *controller, RyFloatProperty *controlled)
    : m_controller(controller), m_controlled(controlled)
{}

/// Why a controller cannot control a property that controls it already, on this way.
static QString circleText(const std::vector<const RyFloatProperty *> &way)
{
    constexpr size_t Shown = 8; // of long ways the ends
    if (way.size() == 1)
        return QStringLiteral("\"%1\" cannot control itself").arg(way.front()->getFullLabel());
    QStringList names;
    for (size_t i = 0; i < way.size(); ++i) {
        if (way.size() > Shown && i == Shown / 2) {
            i = way.size() - Shown / 2;
            names.append(QStringLiteral("%1 more").arg(way.size() - Shown));
        }
        names.append(QLatin1Char('"') + way[i]->getFullLabel() + QLatin1Char('"'));
    }
    return QStringLiteral("%1 cannot control %2, which controls it already: %3")
        .arg(names.back(), names.front(), names.join(QStringLiteral(" > ")));
}

RyERCLink *RyERCLink::create(RyFloatProperty *controller, RyFloatProperty *controlled, RyError *error, QString *reason)
{
    const auto end = [error](RyError result) {
        if (error)
            *error = result;
        return nullptr;
    };
    if (!controller || !controlled) {
        if (reason)
            *reason = QStringLiteral("a link needs two values");
        return end(RyError::InvalidArgument);
    }
    if (findLink(controller, controlled))
        return end(RyError::Success);
    const std::vector<const RyFloatProperty *> way = RyLinkGraph::findWay(controlled, controller);
    if (!way.empty()) {
        if (reason)
            *reason = circleText(way);
        return end(RyError::InvalidArgument);
    }
    end(RyError::Success);
    const std::shared_ptr<RyERCLink> link(new RyERCLink(controller, controlled), [](RyERCLink *old) { delete old; });
    RyValueChange<AttachedValue>::record(link);
    insert(link);
    return link.get();
}

void RyERCLink::remove(RyERCLink *link)
{
    if (!link || !link->isAttached())
        return;
    const std::shared_ptr<RyERCLink> keep = link->m_self;
    RyValueChange<AttachedValue>::record(keep);
    link->detach();
}

float RyERCLink::contribution() const
{
    const RyFloatProperty *controller = getController();
    return controller ? controller->getValue() - controller->getDefaultValue() : 0.0f;
}

void RyERCLink::attach(const std::shared_ptr<RyERCLink> &link)
{
    const RyFloatProperty *controller = link->m_controller;
    const RyFloatProperty *controlled = link->m_controlled;
    if (!controller || !controlled || findLink(controller, controlled) ||
        !RyLinkGraph::findWay(controlled, controller).empty()) {
        return;
    }
    insert(link);
}

void RyERCLink::insert(const std::shared_ptr<RyERCLink> &link)
{
    link->m_self = link;
    link->m_attachedController = link->m_controller;
    link->m_attachedControlled = link->m_controlled;
    RyLinkGraph::addToLinkCount(1);
    const auto put = [&](std::vector<RyERCLink *> &links, size_t place) {
        links.insert(links.begin() + std::ptrdiff_t(std::min(place, links.size())), link.get());
    };
    put(link->m_controller->m_outgoing, link->m_outgoingPlace);
    put(link->m_controlled->m_incoming, link->m_incomingPlace);
    link->m_controlled->update();
}

RyERCLink::Deletion::Deletion()
{
    ++s_deletions;
}

RyERCLink::Deletion::~Deletion()
{
    if (--s_deletions > 0)
        return;
    const std::vector<QPointer<RyFloatProperty>> waiting = std::exchange(s_waiting, {});
    for (const QPointer<RyFloatProperty> &property : waiting) {
        if (property)
            property->update();
    }
}

void RyERCLink::detach(bool announce)
{
    const std::shared_ptr<RyERCLink> keep = std::exchange(m_self, nullptr);
    if (!keep)
        return;
    m_attachedController = nullptr;
    m_attachedControlled = nullptr;
    RyLinkGraph::addToLinkCount(-1);
    const auto take = [this](std::vector<RyERCLink *> &links) {
        const auto place = std::find(links.begin(), links.end(), this);
        return size_t(links.erase(place) - links.begin());
    };
    m_outgoingPlace = take(m_controller->m_outgoing);
    m_incomingPlace = take(m_controlled->m_incoming);
    if (!announce)
        return;
    if (s_deletions > 0)
        s_waiting.emplace_back(m_controlled);
    else
        m_controlled->update();
}
