#pragma once

#include "rycore/base/RyElement.h"

class RyPropertyGroup;

/// A named, labelled value of an element.
class RyProperty : public RyElement
{
    Q_OBJECT
public:
    RyProperty(RyElement *owner, const QString &name);

    /// Null once the owner is being deleted.
    RyElement *getOwner() const { return m_owner; }
    RyPropertyGroup *getGroup() const { return m_group; }

private:
    friend class RyPropertyGroup;
    RyElement *m_owner;
    RyPropertyGroup *m_group = nullptr;
};
