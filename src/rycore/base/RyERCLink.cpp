#include "rycore/base/RyERCLink.h"

#include "rycore/undo/RyValueChange.h"

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

RyERCLink *RyERCLink::create(RyFloatProperty *controller, RyFloatProperty *controlled, RyError *error)
{
    RyError unused;
    RyError &result = error ? *error : unused;
    result = RyError::Success;
    if (!controller || !controlled || wouldCloseCycle(controller, controlled)) {
        result = RyError::InvalidArgument;
        return nullptr;
    }
    if (findLink(controller, controlled))
        return nullptr;
    const std::shared_ptr<RyERCLink> link(new RyERCLink(controller, controlled), [](RyERCLink *old) { delete old; });
    RyValueChange<AttachedValue>::record(link);
    attach(link);
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
    return m_controller ? m_controller->getValue() - m_controller->getDefaultValue() : 0.0f;
}

bool RyERCLink::wouldCloseCycle(const RyFloatProperty *controller, const RyFloatProperty *controlled)
{
    if (controller == controlled)
        return true;
    for (const RyERCLink *link : controlled->getControlledLinks()) {
        if (wouldCloseCycle(controller, link->getControlled()))
            return true;
    }
    return false;
}

bool RyERCLink::attach(const std::shared_ptr<RyERCLink> &link)
{
    RyFloatProperty *controller = link->m_controller;
    RyFloatProperty *controlled = link->m_controlled;
    if (!controller || !controlled || findLink(controller, controlled) || wouldCloseCycle(controller, controlled))
        return false;
    link->m_self = link;
    const auto insert = [&](std::vector<RyERCLink *> &links, size_t place) {
        links.insert(links.begin() + std::ptrdiff_t(std::min(place, links.size())), link.get());
    };
    insert(controller->m_outgoing, link->m_outgoingPlace);
    insert(controlled->m_incoming, link->m_incomingPlace);
    controlled->announceIfChanged();
    return true;
}

void RyERCLink::detach(bool announce)
{
    const std::shared_ptr<RyERCLink> keep = std::exchange(m_self, nullptr);
    if (!keep)
        return;
    const auto take = [this](std::vector<RyERCLink *> &links) {
        const auto place = std::find(links.begin(), links.end(), this);
        return size_t(links.erase(place) - links.begin());
    };
    m_outgoingPlace = take(m_controller->m_outgoing);
    m_incomingPlace = take(m_controlled->m_incoming);
    if (announce)
        m_controlled->announceIfChanged();
}
