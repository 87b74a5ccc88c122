#pragma once

#include <QString>

#include <memory>
#include <vector>

class RyProperty;

/// A named group of properties with sub-groups. Owns both.
class RyPropertyGroup
{
public:
    explicit RyPropertyGroup(const QString &name);
    ~RyPropertyGroup();

    const QString &getName() const { return m_name; }
    RyPropertyGroup *getParent() const { return m_parent; }
    RyPropertyGroup *getFirstChild() const;
    RyPropertyGroup *getNextSibling() const;
    RyPropertyGroup *addChild(const QString &name);

    int getNumProperties() const { return int(m_properties.size()); }
    RyProperty *getProperty(int index) const { return m_properties[size_t(index)].get(); }
    template<typename P>
    P *addProperty(std::unique_ptr<P> property)
    {
        P *added = property.get();
        adopt(std::move(property));
        return added;
    }
    /// Gives a property of this group away, without any group; null for one that is not here.
    std::unique_ptr<RyProperty> takeProperty(const RyProperty *property);

private:
    friend class RyElement;
    void adopt(std::unique_ptr<RyProperty> property);
    /// The owner is going: its properties no longer call it and fall silent.
    void forgetOwner();

    QString m_name;
    RyPropertyGroup *m_parent = nullptr;
    size_t m_indexInParent = 0;
    std::vector<std::unique_ptr<RyPropertyGroup>> m_children;
    std::vector<std::unique_ptr<RyProperty>> m_properties;
};
