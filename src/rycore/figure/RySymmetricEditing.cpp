#include "rycore/figure/RySymmetricEditing.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/math/RyQuat.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/undo/RyUndoStack.h"

#include <cmath>
#include <utility>

namespace {

constexpr int mirrorAxis = 0;
// Of the size of a rig; what differs by less is what numbers cannot hold.
constexpr float toleranceShare = 1e-6f;
constexpr int firstAngle = 6;

// One for the process: code of plug-ins counts in it too.
int suspensions = 0;

std::array<RyFloatProperty *, 9> riggingOf(const RyNode &node)
{
    return {node.getOriginXControl(), node.getOriginYControl(), node.getOriginZControl(),
            node.getEndXControl(),    node.getEndYControl(),    node.getEndZControl(),
            node.getOrientXControl(), node.getOrientYControl(), node.getOrientZControl()};
}

/// Points change their sign along the axis, angles of fixed XYZ order about the other ones.
float reflected(float value, int control)
{
    const bool isAlong = control % 3 == mirrorAxis;
    return isAlong != (control >= firstAngle) ? 0.0f - value : value;
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

RySymmetricEditing &RySymmetricEditing::of(RyScene &scene)
{
    auto *found = scene.findChild<RySymmetricEditing *>(QString(), Qt::FindDirectChildrenOnly);
    return found ? *found : *new RySymmetricEditing(scene);
}

RySymmetricEditing::RySymmetricEditing(RyScene &scene) : QObject(&scene), m_scene(scene)
{
    connect(&scene, &RyScene::nodeListChanged, this, &RySymmetricEditing::forgetBones);
}

void RySymmetricEditing::setOn(bool onOff)
{
    if (onOff == m_isOn)
        return;
    m_isOn = onOff;
    forgetBones();
    emit toggled(onOff);
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
    // Every change is told before it is recorded: only who waits for the next step listens.
    const RyUndoStack *stack = ryUndoStack();
    if (m_isOn && stack)
        connect(stack, &RyUndoStack::aboutToChange, this, &RySymmetricEditing::prepare, Qt::UniqueConnection);
    else if (stack)
        disconnect(stack, &RyUndoStack::aboutToChange, this, &RySymmetricEditing::prepare);
}

/// Before a step begins: the tree changes while nothing can be followed, often many times in a row.
void RySymmetricEditing::prepare()
{
    const RyUndoStack *stack = ryUndoStack();
    if (!m_isOn || m_isReady || !stack || stack->isHoldOpen() || stack->isInUndoRedo())
        return;
    disconnect(stack, &RyUndoStack::aboutToChange, this, &RySymmetricEditing::prepare);
    m_watch = std::make_unique<QObject>();
    m_isReady = true;
    float size = 0.0f;
    for (const RySkeleton *skeleton : m_scene.getSkeletons()) {
        const RyBonePairing pairing(*skeleton, mirrorAxis);
        size = std::max(size, pairing.size());
        for (const RyBonePairing::Pair &pair : pairing.pairs()) {
            if (pairing.mutualOf(pair.first) != pair.second)
                continue;
            watch(pair.first, pair.second, false);
            watch(pair.second, pair.first, false);
        }
        for (RyNode *node : pairing.alone())
            watch(node, nullptr, pairing.isOnPlane(node));
    }
    m_tolerance = toleranceShare * size;
}

void RySymmetricEditing::watch(RyNode *node, RyNode *opposite, bool isOnPlane)
{
    if (!node->getOriginXControl() || (opposite && !opposite->getOriginXControl()))
        return;
    if (isOnPlane)
        m_inPlane.insert(node);
    m_bones.push_back({node, opposite, isOnPlane, riggingOf(*node), riggingOf(opposite ? *opposite : *node)});
    const Bone &bone = m_bones.back();
    for (int i = 0; i < int(bone.controls.size()); ++i) {
        connect(bone.controls[size_t(i)], &RyFloatProperty::currentValueChanged, m_watch.get(),
                [this, &bone, i] { valueChanged(bone, i); });
    }
    connect(node, &RyNode::riggingChanged, m_watch.get(), [this, &bone] { settle(bone); });
}

bool RySymmetricEditing::isFollowing() const
{
    const RyUndoStack *stack = ryUndoStack();
    return suspensions == 0 && stack && stack->isRecording();
}

RyVec3 RySymmetricEditing::held(const RyNode &node, RyVec3 point) const
{
    if (isFollowing() && m_inPlane.contains(&node))
        point[mirrorAxis] = 0.0f;
    return point;
}

void RySymmetricEditing::valueChanged(const Bone &bone, int control)
{
    if (bone.controls[size_t(control)] == m_written || !isFollowing())
        return;
    if (m_scene.isInRiggingEdit())
        m_put.emplace_back(&bone, control);
    else
        follow(bone, control);
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
    bool areBothPlaced = false;
    for (const auto &[bone, control] : put) {
        placed.insert(bone->node);
        areBothPlaced |= placed.contains(bone->opposite);
    }
    for (const auto &[bone, control] : put) {
        const bool isMeant =
            bone->opposite ? placed.contains(bone->opposite) : areBothPlaced && bone->node->editLevel() == 0;
        if (!isMeant)
            follow(*bone, control);
        if (!m_isReady) // a listener changed the tree: the bones are gone
            return;
    }
}

void RySymmetricEditing::follow(const Bone &bone, int control)
{
    if (bone.opposite) {
        m_told = nullptr;
        if (bone.node->editLevel() > 0 && !m_edited.contains(bone.node)) {
            bone.opposite->beginEdit();
            m_edited.insert(bone.node, bone.opposite);
        }
        const float value = bone.controls[size_t(control)]->getValue();
        write(*bone.oppositeControls[size_t(control)], reflected(value, control));
    } else if (bone.isOnPlane) {
        m_told = nullptr;
        keepOnPlane(bone, control);
    } else if (std::exchange(m_told, bone.node) != bone.node) {
        emit unmatchedEdited(bone.node);
    }
}

void RySymmetricEditing::keepOnPlane(const Bone &bone, int control)
{
    if (control >= firstAngle && bone.node->editLevel() > 0)
        m_turned.insert(bone.node); // the other angles may be about to follow
    else if (control >= firstAngle)
        turnIntoPlane(*bone.node);
    else if (control % 3 == mirrorAxis)
        write(*bone.controls[size_t(control)], 0.0f);
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
    node.adjustOrientation(turned);
    m_turned.remove(&node);
}

void RySymmetricEditing::write(RyFloatProperty &control, float value)
{
    if (std::abs(control.getValue() - value) <= std::min(m_tolerance, toleranceShare * std::abs(value)))
        return;
    const RyFloatProperty *outer = std::exchange(m_written, &control);
    control.adjustValue(value);
    m_written = outer;
}
