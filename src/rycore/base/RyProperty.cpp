#include "rycore/base/RyProperty.h"

RyProperty::RyProperty(RyElement *owner, const QString &name) : m_owner(owner)
{
    setObjectName(name);
}
