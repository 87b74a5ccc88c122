#include "rycore/base/RyPropertyGroup.h"

#include "rycore/base/RyProperty.h"

#include <algorithm>

RyPropertyGroup::RyPropertyGroup(const QString &name) : m_name(name) {}

RyPropertyGroup::~RyPropertyGroup() = default;

RyPropertyGroup *RyPropertyGroup::getFirstChild() const
{
    return m_children.empty() ? nullptr : m_children.front().get();
}

RyPropertyGroup *RyPropertyGroup::getNextSibling() const
{
    if (!m_parent || m_indexInParent + 1 >= m_parent->m_children.size())
        return nullptr;
    return m_parent->m_children[m_indexInParent + 1].get();
}

RyPropertyGroup *RyPropertyGroup::addChild(const QString &name)
{
    auto child = std::make_unique<RyPropertyGroup>(name);
    child->m_parent = this;
    child->m_indexInParent = m_children.size();
    m_children.push_back(std::move(child));
    return m_children.back().get();
}

void RyPropertyGroup::adopt(std::unique_ptr<RyProperty> property)
{
    if (!property)
        return;
    property->m_group = this;
    m_properties.push_back(std::move(property));
}

std::unique_ptr<RyProperty> RyPropertyGroup::takeProperty(const RyProperty *property)
{
    // Those that came last mostly go first.
    const auto place = std::find_if(m_properties.rbegin(), m_properties.rend(),
                                    [property](const auto &each) { return each.get() == property; });
    if (place == m_properties.rend())
        return nullptr;
    std::unique_ptr<RyProperty> taken = std::move(*place);
    m_properties.erase(std::next(place).base());
    taken->m_group = nullptr;
    return taken;
}

void RyPropertyGroup::forgetOwner()
{
    for (const auto &child : m_children)
        child->forgetOwner();
    for (const auto &property : m_properties) {
        property->m_owner = nullptr;
        property->blockSignals(true);
    }
}
