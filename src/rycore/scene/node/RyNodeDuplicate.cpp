#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyElementDuplicateContext.h"
#include "rycore/scene/RyNode.h"

RyNode *RyNode::makeSameKind() const
{
    return new RyNode(m_rigging.exists() ? Rigging::Full : Rigging::None);
}

RyElement *RyNode::doDuplicateElement(RyElementDuplicateContext *context)
{
    if (!context)
        return nullptr;
    RyNode *copy = makeSameKind();
    copy->setName(getName());
    if (hasOwnLabel())
        copy->setLabel(getLabel());
    copy->setHidden(isHidden());
    copy->setSelectable(isSelectable());
    copy->setPromoteSelection(isSelectionPromoted());
    copy->setInheritScale(inheritsScale());
    copy->setRotationOrder(getRotationOrder());
    copy->copyPropertiesFrom(*this, !context->skipNonUserProperties());
    context->addDuplicate(this, copy);
    RyNode *parent = context->getParentNode();
    if (parent)
        parent->addNodeChild(copy, false);
    context->setParentNode(copy);
    for (RyNode *child : nodeChildrenIterator()) {
        if (context->takesChild(*child))
            child->doDuplicateElement(context);
    }
    context->setParentNode(parent);
    return copy;
}
