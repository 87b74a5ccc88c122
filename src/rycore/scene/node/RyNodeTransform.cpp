#include "rycore/scene/RyNode.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyValueChange.h"

// Rigging, pose and world of a node: what its parts hold, announced as a whole.

// --- Rigging

RyVec3 RyNode::getOrigin(bool byDefault) const
{
    return m_rigging.read(RyNodeRigging::Origin, byDefault);
}

RyVec3 RyNode::getEndPoint(bool byDefault) const
{
    return m_rigging.read(RyNodeRigging::End, byDefault);
}

RyQuat RyNode::getOrientation(bool byDefault) const
{
    return m_rigging.orientation(byDefault);
}

void RyNode::setOrigin(const RyVec3 &v, bool asDefault)
{
    writeRigging(RyNodeRigging::Origin, v, RyNodeRigging::setting(asDefault));
}

void RyNode::setEndPoint(const RyVec3 &v, bool asDefault)
{
    writeRigging(RyNodeRigging::End, v, RyNodeRigging::setting(asDefault));
}

void RyNode::setOrientation(const RyQuat &q, bool asDefault)
{
    writeRigging(RyNodeRigging::Orientation, q.toEulerXYZ(), RyNodeRigging::setting(asDefault));
}

void RyNode::adjustOrigin(const RyVec3 &v)
{
    writeRigging(RyNodeRigging::Origin, v, RyNodeRigging::Write::Adjust);
}

void RyNode::adjustEndPoint(const RyVec3 &v)
{
    writeRigging(RyNodeRigging::End, v, RyNodeRigging::Write::Adjust);
}

void RyNode::adjustOrientation(const RyQuat &q)
{
    writeRigging(RyNodeRigging::Orientation, q.toEulerXYZ(), RyNodeRigging::Write::Adjust);
}

void RyNode::writeRigging(RyNodeRigging::Triple triple, const RyVec3 &v, RyNodeRigging::Write how)
{
    if (!m_rigging.exists())
        return;
    beginEdit();
    m_rigging.write(triple, v, how);
    m_edit.touchRigging();
    finishEdit();
}

void RyNode::riggingHasChanged()
{
    if (m_edit.noteRiggingChange(editLevel()))
        announceRigging();
}

void RyNode::announceRigging()
{
    if (!m_scene || !m_scene->m_riggingEdits.putOff(this))
        emit riggingChanged();
}

void RyNode::propertyChanged(RyFloatProperty *property)
{
    if (m_rigging.contains(property)) {
        if (m_rigging.isInMaps(property))
            invalidateMaps();
        riggingHasChanged();
    } else if (m_pose.contains(property)) {
        invalidateMaps();
        emit poseChanged();
    } else {
        return;
    }
    announceDrawn();
}

void RyNode::propertyDefaultChanged(RyFloatProperty *property)
{
    if (m_rigging.contains(property))
        riggingHasChanged();
    else if (!m_pose.contains(property))
        return;
    announceDrawn();
}

// --- Edits

void RyNode::editBegun()
{
    m_edit.begin(m_rigging, m_pose);
}

void RyNode::editFinished()
{
    m_edit.finish();
    announceRigging();
}

void RyNode::editCancelled()
{
    if (m_edit.cancel(m_rigging, m_pose))
        announceRigging();
}

// --- Pose

struct RyNode::OrderValue : RyValueOf<RyNode, RyRotationOrder>
{
    static RyRotationOrder get(const RyNode &node) { return node.getRotationOrder(); }
    static void put(RyNode &node, RyRotationOrder order) { node.applyRotationOrder(order); }
};

void RyNode::setRotationOrder(const RyRotationOrder &order)
{
    if (order == getRotationOrder())
        return;
    RyValueChange<OrderValue>::record(this);
    applyRotationOrder(order);
}

void RyNode::applyRotationOrder(const RyRotationOrder &order)
{
    if (order == getRotationOrder())
        return;
    m_pose.setOrder(order);
    invalidateMaps();
    emit rotationOrderChanged();
    emit poseChanged();
    announceDrawn();
}

void RyNode::clearPose()
{
    m_pose.clear();
}

bool RyNode::isPosed() const
{
    return m_pose.isPosed();
}

RyQuat RyNode::getLocalRot() const
{
    return m_pose.localRotation(getOrientation(), false);
}

RyMatrix3 RyNode::getLocalScale() const
{
    return m_pose.localScale(getOrientation(), m_pose.generalScale());
}

void RyNode::getLocalTransform(RyVec3 &position, RyQuat &rotation, RyMatrix3 &scale, float &generalScale) const
{
    m_pose.getTransform(getOrientation(), position, rotation, scale, generalScale);
}

void RyNode::setLocalTransform(const RyVec3 &position, const RyQuat &rotation, const RyMatrix3 &scale,
                               float generalScale)
{
    m_pose.writeTransform(getOrientation(), position, rotation, scale, generalScale, &RyFloatProperty::setValue);
}

void RyNode::adjustLocalTransform(const RyVec3 &position, const RyQuat &rotation, const RyMatrix3 &scale,
                                  float generalScale)
{
    m_pose.writeTransform(getOrientation(), position, rotation, scale, generalScale, &RyFloatProperty::adjustValue);
}

void RyNode::adjustLocalMap(const RyAffine &local)
{
    m_pose.takeFrom(local, getOrigin(), getOrientation());
}

RyAffine RyNode::getLocalMap() const
{
    return m_pose.localMap(getOrigin(), getOrientation(), false);
}

// --- World

const RyNodeMaps &RyNode::validMaps() const
{
    if (!m_maps.isValid())
        RyNodeMaps::update(*this);
    return m_maps;
}

const RyAffine &RyNode::worldMap() const
{
    return validMaps().world();
}

const RyAffine &RyNode::figureMap() const
{
    return validMaps().figure();
}

quint64 RyNode::mapRevision() const
{
    // Changes are counted from valid maps on.
    return validMaps().revision();
}

RyMatrix4 RyNode::getWSTransform() const
{
    return (RyAffine::fromTranslation(getOrigin()) * worldMap()).toMatrix4();
}

void RyNode::getWSTransform(RyVec3 &position, RyQuat &rotation, RyMatrix3 &scale) const
{
    const RyMatrix4 transform = getWSTransform();
    position = transform.translation();
    rotation = getWSRot();
    scale = transform.linear() * RyMatrix3(rotation.inverse());
}

RyMatrix4 RyNode::getWSTransform(const RyTime &, bool defaultPose) const
{
    return defaultPose ? RyNodeMaps::Default::of(this).transform(*this) : getWSTransform();
}

RyVec3 RyNode::getWSPos() const
{
    return worldMap().mapPoint(getOrigin());
}

RyQuat RyNode::getWSRot() const
{
    return validMaps().worldRotation();
}

RyVec3 RyNode::getWSEndPoint() const
{
    return worldMap().mapPoint(getEndPoint());
}
