#include "rycore/figure/RySymmetricEditing.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/math/RyQuat.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyRiggingEdit.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/undo/RyUndoStack.h"

#include <QScopedValueRollback>

#include <cmath>
#include <utility>

namespace {

constexpr int mirrorAxis = 0;
// Of the size of a rig; what differs by less is what numbers cannot hold.
constexpr float toleranceShare = 1e-6f;
constexpr int firstAngle = RyNodeRigging::Orientation;

// One for the process: code of plug-ins counts in it too.
int suspensions = 0;
int withoutSteps = 0;

float reflected(float value, int control)
{
    return RyNodeRigging::isReversedByMirror(control, mirrorAxis) ? 0.0f - value : value;
}

bool isAbove(const RyNode *above, const RyNode *node)
{
    while (node && node != above)
        node = node->getNodeParent();
    return node;
}

} // namespace

RySymmetricEditing::Suspension::Suspension()
{
    ++suspensions;
}

RySymmetricEditing::Suspension::~Suspension()
{
    --suspensions;
}

RySymmetricEditing::WithoutSteps::WithoutSteps()
{
    ++withoutSteps;
}

RySymmetricEditing::WithoutSteps::~WithoutSteps()
{
    --withoutSteps;
}

RySymmetricEditing &RySymmetricEditing::of(RyScene &scene)
{
    auto *found = scene.findChild<RySymmetricEditing *>(QString(), Qt::FindDirectChildrenOnly);
    return found ? *found : *new RySymmetricEditing(scene);
}

RySymmetricEditing::RySymmetricEditing(RyScene &scene) : QObject(&scene), m_scene(scene)
{
    connect(&scene, &RyScene::nodeListChanged, this, &RySymmetricEditing::forgetBones);
    connect(&scene, &RyScene::nodeRemoved, this, &RySymmetricEditing::forget);
}

void RySymmetricEditing::setOn(bool onOff)
{
    if (onOff == m_isOn)
        return;
    m_isOn = onOff;
    forgetBones();
    emit toggled(onOff);
}

/// Of a node that goes nothing else may be told.
void RySymmetricEditing::forget(RyNode *removed)
{
    for (QPointer<RyNode> &opposite : m_edited) {
        if (opposite == removed)
            opposite = nullptr;
    }
    forgetBones();
}

void RySymmetricEditing::forgetBones()
{
    m_watch.reset();
    for (const QPointer<RyNode> &opposite : std::exchange(m_edited, {})) {
        if (opposite)
            opposite->finishEdit();
    }
    m_put.clear();
    m_bones.clear();
    m_inPlane.clear();
    m_turned.clear();
    m_told = nullptr;
    m_isReady = false;
    m_isOutdated = false;
    // Every change is told before it is recorded: only who waits for the next step listens.
    const RyUndoStack *stack = ryUndoStack();
    if (m_isOn && stack)
        connect(stack, &RyUndoStack::aboutToChange, this, &RySymmetricEditing::prepare, Qt::UniqueConnection);
    else if (stack)
        disconnect(stack, &RyUndoStack::aboutToChange, this, &RySymmetricEditing::prepare);
}

void RySymmetricEditing::renewBones()
{
    const RyUndoStack *stack = ryUndoStack();
    if (std::exchange(m_isOutdated, true) || !stack)
        return;
    connect(stack, &RyUndoStack::aboutToChange, this, &RySymmetricEditing::prepare, Qt::UniqueConnection);
}

/// Before a step begins: the tree changes while nothing can be followed, often many times in a row.
void RySymmetricEditing::prepare()
{
    const RyUndoStack *stack = ryUndoStack();
    if (!m_isOn || (m_isReady && !m_isOutdated) || !stack || stack->isHoldOpen() || stack->isInUndoRedo())
        return;
    if (m_isOutdated)
        forgetBones();
    disconnect(stack, &RyUndoStack::aboutToChange, this, &RySymmetricEditing::prepare);
    m_watch = std::make_unique<QObject>();
    m_isReady = true;
    float size = 0.0f;
    for (const RySkeleton *skeleton : m_scene.getSkeletons()) {
        const RyBonePairing pairing(*skeleton, mirrorAxis);
        size = std::max(size, pairing.size());
        watchFigure(pairing);
    }
    m_tolerance = toleranceShare * size;
}

void RySymmetricEditing::watchFigure(const RyBonePairing &pairing)
{
    for (RyNode *node : pairing.own()) {
        RyNode *opposite = pairing.mutualOf(node);
        if (opposite && (isAbove(node, opposite) || isAbove(opposite, node)))
            opposite = nullptr;
        if (opposite || qobject_cast<RyBone *>(node))
            watch(node, opposite, pairing.isOnPlane(node));
    }
}

void RySymmetricEditing::watch(RyNode *node, RyNode *opposite, bool isOnPlane)
{
    if (!node->getOriginXControl() || (opposite && !opposite->getOriginXControl()))
        return;
    if (isOnPlane)
        m_inPlane.insert(node);
    m_bones.push_back(
        {node, opposite, isOnPlane, node->riggingControls(), (opposite ? opposite : node)->riggingControls()});
    const Bone &bone = m_bones.back();
    for (int i = 0; i < int(bone.controls.size()); ++i) {
        connect(bone.controls[size_t(i)], &RyFloatProperty::currentValueChanged, m_watch.get(),
                [this, &bone, i] { valueChanged(bone, i); });
    }
    for (int i = 0; i < firstAngle; ++i) {
        connect(bone.controls[size_t(i)], &RyFloatProperty::defaultValueChanged, m_watch.get(),
                [this] { renewBones(); });
    }
    connect(node, &RyNode::riggingChanged, m_watch.get(), [this, &bone] { settle(bone); });
}

bool RySymmetricEditing::isFollowing() const
{
    const RyUndoStack *stack = ryUndoStack();
    if (suspensions > 0 || !stack)
        return false;
    return stack->isRecording() || (withoutSteps > 0 && !stack->isHoldOpen() && !stack->isInUndoRedo());
}

RyVec3 RySymmetricEditing::held(const RyNode &node, RyVec3 point) const
{
    if (isFollowing() && m_inPlane.contains(&node))
        point[mirrorAxis] = 0.0f;
    return point;
}

void RySymmetricEditing::valueChanged(const Bone &bone, int control)
{
    if (m_busy.contains(bone.controls[size_t(control)]) || !isFollowing())
        return;
    if (m_scene.isInRiggingEdit()) {
        m_put.emplace_back(&bone, control);
        return;
    }
    const QPointer<RyNode> opposite = bone.opposite;
    follow(bone, control);
    if (opposite)
        emit followed(opposite);
}

/// A bone announces its rigging when a row of changes is complete: the last one of a rig edit, and orientations, which
/// are written one number after the other.
void RySymmetricEditing::settle(const Bone &bone)
{
    if (const QPointer<RyNode> opposite = m_edited.take(bone.node))
        opposite->finishEdit();
    if (m_scene.isInRiggingEdit() || (m_put.empty() && m_turned.isEmpty()))
        return;
    if (!isFollowing()) {
        m_put.clear();
        m_turned.clear();
        return;
    }
    RyNode *node = bone.node;
    followRiggingEdit();
    if (m_turned.remove(node))
        turnIntoPlane(*node);
}

void RySymmetricEditing::followRiggingEdit()
{
    const auto put = std::exchange(m_put, {});
    QSet<const RyNode *> placed;
    QSet<const RySkeleton *> figures; // in which both of a pair were placed
    for (const auto &[bone, control] : put) {
        if (!bone->controls[size_t(control)]->getControllerLinks().empty())
            continue;
        placed.insert(bone->node);
        if (placed.contains(bone->opposite))
            figures.insert(bone->node->getSkeleton());
    }
    const auto isMeant = [&](const Bone &bone) {
        return bone.opposite ? placed.contains(bone.opposite)
                             : figures.contains(bone.node->getSkeleton()) && bone.node->editLevel() == 0;
    };
    const QScopedValueRollback<QSet<const RyFloatProperty *>> busy(m_busy);
    for (const auto &[bone, control] : put)
        m_busy << bone->controls[size_t(control)] << bone->oppositeControls[size_t(control)];
    const RyRiggingEdit edit;
    for (const auto &[bone, control] : put) {
        if (!isMeant(*bone))
            follow(*bone, control);
        if (!m_isReady) // a listener changed the tree: the bones are gone
            return;
    }
}

void RySymmetricEditing::follow(const Bone &bone, int control)
{
    if (bone.opposite) {
        m_told = nullptr;
        followOpposite(bone, control);
    } else if (bone.isOnPlane) {
        m_told = nullptr;
        keepOnPlane(bone, control);
    } else if (std::exchange(m_told, bone.node) != bone.node) {
        emit unmatchedEdited(bone.node);
    }
}

void RySymmetricEditing::followOpposite(const Bone &bone, int control)
{
    RyFloatProperty &edited = *bone.controls[size_t(control)];
    RyFloatProperty &opposite = *bone.oppositeControls[size_t(control)];
    const float value = edited.getValue();
    const QScopedValueRollback<QSet<const RyFloatProperty *>> busy(m_busy);
    m_busy << &edited << &opposite;
    openEdit(bone);
    write(opposite, reflected(value, control));
    if (m_isReady && !edited.getControllerLinks().empty()) // the opposite may drive it
        write(edited, value);
}

/// The opposite is edited as long as the bone, unless that one is edited as its opposite itself.
void RySymmetricEditing::openEdit(const Bone &bone)
{
    if (bone.node->editLevel() == 0 || m_edited.contains(bone.node) || m_edited.value(bone.opposite) == bone.node)
        return;
    m_edited.insert(bone.node, bone.opposite);
    bone.opposite->beginEdit();
}

void RySymmetricEditing::keepOnPlane(const Bone &bone, int control)
{
    if (control >= firstAngle && bone.node->editLevel() > 0)
        m_turned.insert(bone.node); // the other angles may be about to follow
    else if (control >= firstAngle)
        turnIntoPlane(*bone.node);
    else if (control % 3 == mirrorAxis)
        putOnPlane(*bone.controls[size_t(control)]);
}

void RySymmetricEditing::putOnPlane(RyFloatProperty &control)
{
    const QScopedValueRollback<QSet<const RyFloatProperty *>> busy(m_busy);
    m_busy << &control;
    write(control, 0.0f);
}

/// The least turn that lays the bone axis that is nearest to the mirror axis along it.
void RySymmetricEditing::turnIntoPlane(RyNode &node)
{
    const RyQuat orientation = node.getOrientation();
    RyVec3 nearest;
    for (int k = 0; k < 3; ++k) {
        const RyVec3 axis = orientation.multVec(RyVec3::axis(k));
        if (std::abs(axis[mirrorAxis]) > std::abs(nearest[mirrorAxis]))
            nearest = axis;
    }
    RyVec3 wanted;
    wanted[mirrorAxis] = nearest[mirrorAxis] < 0.0f ? -1.0f : 1.0f;
    if ((wanted - nearest).length() < toleranceShare)
        return;
    RyQuat turned = orientation * wanted.getRotationTo(nearest);
    turned.makeClosest(orientation);
    const QScopedValueRollback<QSet<const RyFloatProperty *>> busy(m_busy);
    m_busy << node.getOrientXControl() << node.getOrientYControl() << node.getOrientZControl();
    node.adjustOrientation(turned);
    m_turned.remove(&node);
}

void RySymmetricEditing::write(RyFloatProperty &control, float value)
{
    if (std::abs(control.getValue() - value) > std::min(m_tolerance, toleranceShare * std::abs(value)))
        control.adjustValue(value);
}
