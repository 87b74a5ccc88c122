#include "rycore/base/RyElement.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/base/RyPropertyGroup.h"
#include "rycore/undo/RyUndoStackLock.h"
#include "rycore/undo/RyValueChange.h"

#include <utility>

struct RyElement::LabelValue : RyValueOf<RyElement, QString>
{
    static QString get(const RyElement &element) { return element.m_label; }
    static void put(RyElement &element, const QString &label) { element.applyLabel(label); }
};

RyElement::RyElement(QObject *parent) : RyBase(parent) {}

RyElement::~RyElement()
{
    if (m_publicGroups)
        m_publicGroups->forgetOwner();
    if (m_privateGroups)
        m_privateGroups->forgetOwner();
}

QString RyElement::getLabel() const
{
    return hasOwnLabel() ? m_label : getName();
}

void RyElement::setLabel(const QString &label)
{
    if (label == m_label && label.isNull() == m_label.isNull())
        return;
    RyValueChange<LabelValue>::record(this);
    applyLabel(label);
}

void RyElement::applyLabel(const QString &label)
{
    const QString before = getLabel();
    m_label = label;
    if (getLabel() != before)
        emit labelChanged(getLabel());
}

void RyElement::nameHasChanged()
{
    if (!hasOwnLabel())
        emit labelChanged(getLabel());
}

void RyElement::beginEdit()
{
    if (m_editLevel++ == 0)
        editBegun();
}

void RyElement::finishEdit()
{
    if (m_editLevel > 0 && --m_editLevel == 0)
        editFinished();
}

void RyElement::cancelEdit()
{
    if (std::exchange(m_editLevel, 0) == 0)
        return;
    const RyUndoStackLock lock;
    editCancelled();
}

void RyElement::propertyChanged(RyFloatProperty *) {}

void RyElement::propertyDefaultChanged(RyFloatProperty *) {}

RyElement *RyElement::doDuplicateElement(RyElementDuplicateContext *)
{
    return nullptr;
}

void RyElement::resolveDuplicate(const RyElement *, const RyElementDuplicateContext &) {}

void RyElement::copyGroup(const RyElement &other, const RyPropertyGroup &from, RyPropertyGroup &to, bool addMissing)
{
    for (int i = 0; i < from.getNumProperties(); ++i) {
        const auto *source = qobject_cast<const RyFloatProperty *>(from.getProperty(i));
        if (!source || from.getProperty(i)->getOwner() != &other)
            continue;
        if (i >= to.getNumProperties() && addMissing)
            to.addProperty(std::make_unique<RyFloatProperty>(this, source->getName()));
        if (auto *target = i < to.getNumProperties() ? qobject_cast<RyFloatProperty *>(to.getProperty(i)) : nullptr)
            target->copyFrom(*source);
    }
    RyPropertyGroup *target = to.getFirstChild();
    for (const RyPropertyGroup *source = from.getFirstChild(); source; source = source->getNextSibling()) {
        if (!target && addMissing)
            target = to.addChild(source->getName());
        if (!target)
            return;
        copyGroup(other, *source, *target, addMissing);
        target = target->getNextSibling();
    }
}

void RyElement::copyPropertiesFrom(const RyElement &other, bool addMissing)
{
    const std::unique_ptr<RyPropertyGroup> RyElement::*const trees[] = {&RyElement::m_publicGroups,
                                                                        &RyElement::m_privateGroups};
    for (const auto tree : trees) {
        const RyPropertyGroup *from = (other.*tree).get();
        if (!from)
            continue;
        RyPropertyGroup *to = (this->*tree).get();
        if (!to && addMissing)
            to = tree == trees[0] ? createPublicGroups(from->getName()) : createPrivateGroups(from->getName());
        if (to)
            copyGroup(other, *from, *to, addMissing);
    }
}

RyPropertyGroup *RyElement::createPublicGroups(const QString &name)
{
    if (!m_publicGroups)
        m_publicGroups = std::make_unique<RyPropertyGroup>(name);
    return m_publicGroups.get();
}

RyPropertyGroup *RyElement::createPrivateGroups(const QString &name)
{
    if (!m_privateGroups)
        m_privateGroups = std::make_unique<RyPropertyGroup>(name);
    return m_privateGroups.get();
}
