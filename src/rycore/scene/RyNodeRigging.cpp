#include "rycore/scene/RyNode.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/math/RyFastMath.h"
#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyValueChange.h"

#include <algorithm>

// Rigging values: nine float properties in three triples.

namespace {

constexpr int OriginTriple = 0;
constexpr int EndTriple = 3;
constexpr int OrientationTriple = 6;

RyVec3 readTriple(RyFloatProperty *const *properties, bool byDefault)
{
    if (!properties[0])
        return {};
    if (byDefault)
        return {properties[0]->getDefaultValue(), properties[1]->getDefaultValue(), properties[2]->getDefaultValue()};
    return {properties[0]->getValue(), properties[1]->getValue(), properties[2]->getValue()};
}

} // namespace

RyVec3 RyNode::getOrigin(bool byDefault) const
{
    return readTriple(m_rigging + OriginTriple, byDefault);
}

RyVec3 RyNode::getEndPoint(bool byDefault) const
{
    return readTriple(m_rigging + EndTriple, byDefault);
}

RyQuat RyNode::getOrientation(bool byDefault) const
{
    return RyQuat::fromEulerXYZ(readTriple(m_rigging + OrientationTriple, byDefault));
}

void RyNode::setOrigin(const RyVec3 &v, bool asDefault)
{
    writeTriple(OriginTriple, v, asDefault, false);
}

void RyNode::setEndPoint(const RyVec3 &v, bool asDefault)
{
    writeTriple(EndTriple, v, asDefault, false);
}

void RyNode::setOrientation(const RyQuat &q, bool asDefault)
{
    writeTriple(OrientationTriple, q.toEulerXYZ(), asDefault, false);
}

void RyNode::adjustOrigin(const RyVec3 &v)
{
    writeTriple(OriginTriple, v, false, true);
}

void RyNode::adjustEndPoint(const RyVec3 &v)
{
    writeTriple(EndTriple, v, false, true);
}

void RyNode::adjustOrientation(const RyQuat &q)
{
    writeTriple(OrientationTriple, q.toEulerXYZ(), false, true);
}

void RyNode::writeTriple(int first, const RyVec3 &v, bool asDefault, bool adjust)
{
    if (!m_rigging[first])
        return;
    beginEdit();
    for (int axis = 0; axis < 3; ++axis) {
        RyFloatProperty *property = m_rigging[first + axis];
        if (asDefault)
            property->setDefaultValue(v[axis]);
        if (adjust)
            property->adjustValue(v[axis]);
        else
            property->setValue(v[axis]);
    }
    m_riggingTouched = true;
    finishEdit();
}

void RyNode::propertyChanged(RyFloatProperty *property)
{
    const bool isRigging = std::find(m_rigging, m_rigging + 9, property) != m_rigging + 9;
    if (isRigging) {
        const bool movesPoints = property != m_rigging[3] && property != m_rigging[4] && property != m_rigging[5];
        if (movesPoints)
            invalidateMaps();
        m_riggingTouched = true;
        if (editLevel() == 0 && !m_restoringEdit) {
            m_riggingTouched = false;
            emit riggingChanged();
        }
    } else if (std::find(m_pose, m_pose + 10, property) != m_pose + 10) {
        invalidateMaps();
        emit poseChanged();
    } else {
        return;
    }
    if (m_scene)
        emit m_scene->drawnDataChanged();
}

void RyNode::propertyDefaultChanged(RyFloatProperty *property)
{
    if (std::find(m_rigging, m_rigging + 9, property) != m_rigging + 9) {
        m_riggingTouched = true;
        if (editLevel() == 0 && !m_restoringEdit) {
            m_riggingTouched = false;
            emit riggingChanged();
        }
    } else if (std::find(m_pose, m_pose + 10, property) == m_pose + 10) {
        return;
    }
    if (m_scene)
        emit m_scene->drawnDataChanged();
}

// --- Edits

void RyNode::editBegun()
{
    m_editSnapshot.clear();
    for (const RyFloatProperty *property : m_rigging) {
        if (property) {
            m_editSnapshot.push_back(property->getRawValue());
            m_editSnapshot.push_back(property->getDefaultValue());
        }
    }
    for (const RyFloatProperty *property : m_pose) {
        m_editSnapshot.push_back(property->getRawValue());
        m_editSnapshot.push_back(property->getDefaultValue());
    }
    m_riggingTouched = false;
}

void RyNode::editFinished()
{
    m_editSnapshot.clear();
    m_riggingTouched = false;
    emit riggingChanged();
}

void RyNode::editCancelled()
{
    size_t next = 0;
    const auto restore = [&](RyFloatProperty *property) {
        if (!property || next + 1 >= m_editSnapshot.size())
            return;
        property->setDefaultValue(m_editSnapshot[next + 1]);
        property->setValue(m_editSnapshot[next]);
        next += 2;
    };
    m_restoringEdit = true;
    for (RyFloatProperty *property : m_rigging)
        restore(property);
    for (RyFloatProperty *property : m_pose)
        restore(property);
    m_restoringEdit = false;
    m_editSnapshot.clear();
    if (m_riggingTouched) {
        m_riggingTouched = false;
        emit riggingChanged();
    }
}

// --- Pose

struct RyNode::OrderValue : RyValueOf<RyNode, RyRotationOrder>
{
    static RyRotationOrder get(const RyNode &node) { return node.m_rotationOrder; }
    static void put(RyNode &node, RyRotationOrder order) { node.applyRotationOrder(order); }
};

void RyNode::setRotationOrder(const RyRotationOrder &order)
{
    if (order == m_rotationOrder)
        return;
    RyValueChange<OrderValue>::record(this);
    applyRotationOrder(order);
}

void RyNode::applyRotationOrder(const RyRotationOrder &order)
{
    if (order == m_rotationOrder)
        return;
    m_rotationOrder = order;
    invalidateMaps();
    emit rotationOrderChanged();
    emit poseChanged();
    if (m_scene)
        emit m_scene->drawnDataChanged();
}

void RyNode::clearPose()
{
    for (RyFloatProperty *property : m_pose)
        property->setValue(property->getDefaultValue());
}

bool RyNode::isPosed() const
{
    return std::any_of(m_pose, m_pose + 10,
                       [](const RyFloatProperty *p) { return p->getValue() != p->getDefaultValue(); });
}

RyQuat RyNode::poseRotation(bool byDefault) const
{
    const int order[3] = {m_rotationOrder[0], m_rotationOrder[1], m_rotationOrder[2]};
    return RyQuat::fromEuler(readTriple(m_pose + 3, byDefault), order);
}

RyQuat RyNode::getLocalRot() const
{
    const RyQuat orientation = getOrientation();
    return orientation.inverse() * poseRotation(false) * orientation;
}

RyMatrix3 RyNode::getLocalScale() const
{
    const RyQuat orientation = getOrientation();
    const RyVec3 scale = readTriple(m_pose + 7, false) * m_pose[6]->getValue();
    return RyMatrix3(orientation.inverse()) * RyMatrix3::diagonal(scale) * RyMatrix3(orientation);
}

void RyNode::getLocalTransform(RyVec3 &position, RyQuat &rotation, RyMatrix3 &scale, float &generalScale) const
{
    const RyQuat orientation = getOrientation();
    position = readTriple(m_pose, false);
    rotation = getLocalRot();
    scale =
        RyMatrix3(orientation.inverse()) * RyMatrix3::diagonal(readTriple(m_pose + 7, false)) * RyMatrix3(orientation);
    generalScale = m_pose[6]->getValue();
}

void RyNode::setLocalTransform(const RyVec3 &position, const RyQuat &rotation, const RyMatrix3 &scale,
                               float generalScale)
{
    const RyQuat orientation = getOrientation();
    const RyQuat pose = orientation * rotation * orientation.inverse();
    const RyMatrix3 inBoneAxes = RyMatrix3(orientation) * scale * RyMatrix3(orientation.inverse());
    const int order[3] = {m_rotationOrder[0], m_rotationOrder[1], m_rotationOrder[2]};
    // The identity is written as such, not as what rounding leaves of it.
    const RyVec3 degrees = rotation == RyQuat() ? RyVec3() : pose.toEuler(order);
    const bool unscaled = scale == RyMatrix3();
    for (int axis = 0; axis < 3; ++axis) {
        m_pose[axis]->adjustValue(position[axis]);
        m_pose[3 + axis]->adjustValue(degrees[axis]);
        m_pose[7 + axis]->adjustValue(unscaled ? 1.0f : inBoneAxes[axis][axis]);
    }
    m_pose[6]->adjustValue(generalScale);
}
