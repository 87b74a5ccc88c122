#include "rycore/parametric/RyLegacyJoint.h"

#include "rycore/base/RyPlaceChange.h"
#include "rycore/parametric/RyLegacyBinding.h"
#include "rycore/parametric/RyLegacyJointIndex.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyElementDuplicateContext.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/undo/RyValueChange.h"

#include <algorithm>

/// The bone counts while a step may bring it back.
struct RyLegacyJoint::BoneValue : RyValueOf<RyLegacyJoint, RyRef<RyBone>>
{
    static RyBone *get(const RyLegacyJoint &joint) { return joint.getBone(); }
    static void put(RyLegacyJoint &joint, const Value &bone) { joint.applyBone(bone.get()); }
};

struct RyLegacyJoint::ParamList : RyListOf<RyLegacyJoint, RyLegacyJointParam>
{
    static bool mayMove(const RyLegacyJoint &joint, const RyLegacyJointParam &param)
    {
        return !param.getJoint() || param.getJoint() == &joint;
    }
    static const auto &of(const RyLegacyJoint &joint) { return joint.m_params; }
    static bool has(const RyLegacyJoint &joint, const RyLegacyJointParam &param) { return param.getJoint() == &joint; }
    static void take(RyLegacyJoint &joint, RyLegacyJointParam *param, int place) { joint.takeParam(param, place); }
    static void insert(RyLegacyJoint &joint, RyLegacyJointParam *param, int index) { joint.insertParam(param, index); }
};

RyLegacyJoint::~RyLegacyJoint()
{
    for (RyLegacyJointParam *param : m_params) {
        disconnect(param, nullptr, this, nullptr);
        param->m_joint = nullptr;
        param->unref();
    }
}

RyLegacyJoint *RyLegacyJoint::findJoint(const RyNode *node)
{
    const RySkeleton *skeleton = node ? node->getSkeleton() : nullptr;
    if (!skeleton)
        return nullptr;
    const RyLegacyBinding *binding = RyLegacyBinding::findBinding(skeleton);
    if (RyLegacyJoint *joint = binding ? binding->findJoint(node) : nullptr)
        return joint;
    for (const RyLegacyJoint *joint : RyLegacyJointIndex::jointsOf(node)) {
        const RySkeleton *figure = joint->getBinding()->getFigure();
        if (figure && RyLegacyBinding::isJoined(*figure, node))
            return joint->getBinding()->findJoint(node);
    }
    return nullptr;
}

void RyLegacyJoint::setBone(RyBone *bone, bool takeName)
{
    if (bone == m_bone)
        return;
    RyValueChange<BoneValue>::record(this);
    if (takeName && bone && getName().isEmpty())
        setName(bone->getName());
    applyBone(bone);
}

void RyLegacyJoint::applyBone(RyBone *bone)
{
    if (m_binding)
        RyLegacyJointIndex::remove(this);
    m_bone = bone;
    if (m_binding)
        RyLegacyJointIndex::insert(this);
    emit jointChanged();
}

QString RyLegacyJoint::getGroupName() const
{
    const RySkeleton *figure = m_binding ? m_binding->getFigure() : nullptr;
    const RySkeleton *skeleton = m_bone ? m_bone->getSkeleton() : nullptr;
    if (!figure)
        figure = skeleton;
    const RySelectionMap *map = figure ? figure->getSelectionMap() : nullptr;
    QString group;
    for (const RyNode *node = m_bone; map && node && node != skeleton && group.isEmpty(); node = node->getNodeParent())
        group = map->findGroupForNode(node);
    return group;
}

bool RyLegacyJoint::addJointParam(RyLegacyJointParam *param)
{
    if (!param || param->m_joint)
        return false;
    const RyRef<RyLegacyJointParam> guard(param);
    RyPlaceChange<ParamList>::record(this, param, -1);
    insertParam(param, int(m_params.size()));
    return true;
}

bool RyLegacyJoint::removeJointParam(RyLegacyJointParam *param)
{
    const auto place = std::find(m_params.begin(), m_params.end(), param);
    if (place == m_params.end())
        return false;
    const RyRef<RyLegacyJointParam> guard(param);
    const int index = int(place - m_params.begin());
    RyPlaceChange<ParamList>::record(this, param, index);
    takeParam(param, index);
    return true;
}

void RyLegacyJoint::insertParam(RyLegacyJointParam *param, int index)
{
    param->ref();
    param->m_joint = this;
    m_params.insert(m_params.begin() + std::min(index, int(m_params.size())), param);
    connect(param, &RyLegacyJointParam::paramChanged, this, &RyLegacyJoint::jointChanged);
    emit jointChanged();
}

void RyLegacyJoint::takeParam(RyLegacyJointParam *param, int index)
{
    emit param->aboutToBeRemoved();
    m_params.erase(m_params.begin() + index);
    disconnect(param, nullptr, this, nullptr);
    param->m_joint = nullptr;
    emit jointChanged();
    param->unref();
}

RyLegacyJointParam *RyLegacyJoint::findParam(RyLegacyJointParam::Type type, const RyBone *driver, int axis) const
{
    const auto found = std::find_if(m_params.begin(), m_params.end(), [=](const RyLegacyJointParam *param) {
        return param->type() == type && param->getDriver() == driver && (axis < 0 || param->getAxis() == axis);
    });
    return driver && found != m_params.end() ? *found : nullptr;
}

RyLegacyJointParam *RyLegacyJoint::findParam(const QString &name) const
{
    const auto found = std::find_if(m_params.begin(), m_params.end(),
                                    [&name](const RyLegacyJointParam *param) { return param->getName() == name; });
    return found != m_params.end() ? *found : nullptr;
}

RyElement *RyLegacyJoint::doDuplicateElement(RyElementDuplicateContext *context)
{
    if (!context)
        return nullptr;
    auto *joint = new RyLegacyJoint;
    joint->setName(getName());
    if (hasOwnLabel())
        joint->setLabel(getLabel());
    joint->setBone(m_bone);
    context->addDuplicate(this, joint);
    for (RyLegacyJointParam *param : m_params)
        joint->addJointParam(static_cast<RyLegacyJointParam *>(param->doDuplicateElement(context)));
    return joint;
}

void RyLegacyJoint::resolveDuplicate(const RyElement *original, const RyElementDuplicateContext &context)
{
    const auto *from = qobject_cast<const RyLegacyJoint *>(original);
    auto *bone = from ? qobject_cast<RyBone *>(context.findNewElement(from->getBone())) : nullptr;
    if (!bone)
        return;
    if (from->getName() == from->getBone()->getName())
        setName(bone->getName());
    setBone(bone);
}
