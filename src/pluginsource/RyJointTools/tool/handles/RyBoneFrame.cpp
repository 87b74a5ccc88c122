#include "pluginsource/RyJointTools/tool/handles/RyBoneFrame.h"

#include "rycore/math/RyMatrix4.h"
#include "rycore/scene/RyBone.h"

/// Which way along its first axis a bone goes is asked in its own axes: joints of files turn them anywhere. For a bone
/// that is aligned or not turned this is the order of the two coordinates.
static float signOf(const RyQuat &orientation, const RyVec3 &way, int axis)
{
    return orientation.inverse().multVec(way)[axis] < 0.0f ? -1.0f : 1.0f;
}

static RyBoneFrame makeFrame(const RyBone &bone, const RyMatrix4 &shapeToWorld, float length)
{
    RyBoneFrame frame;
    bone.getRotationOrder().getAxisOrder(frame.axes[0], frame.axes[1], frame.axes[2]);
    const auto axis = [&](int k) {
        const float *row = shapeToWorld[frame.axes[k]];
        return RyVec3(row[0], row[1], row[2]);
    };
    frame.origin = shapeToWorld.translation();
    frame.along = axis(0) * length;
    frame.sides[0] = axis(1) * (length / 10.0f);
    frame.sides[1] = axis(2) * (length / 10.0f);
    return frame;
}

RyBoneFrame RyBoneFrame::ofBone(const RyBone &bone)
{
    const RyQuat orientation = bone.getOrientation();
    const RyVec3 way = bone.getEndPoint() - bone.getOrigin();
    return makeFrame(bone, RyMatrix4(orientation) * bone.getWSTransform(),
                     signOf(orientation, way, bone.getRotationOrder()[0]) * way.length());
}

RyBoneFrame RyBoneFrame::ofDefault(const RyBone &bone, const RyMatrix4 &defaultTransform)
{
    const RyVec3 way = bone.getEndPoint() - bone.getOrigin();
    const RyVec3 defaultWay = bone.getEndPoint(true) - bone.getOrigin(true);
    return makeFrame(bone, RyMatrix4(bone.getOrientation(true)) * defaultTransform,
                     signOf(bone.getOrientation(), way, bone.getRotationOrder()[0]) * defaultWay.length());
}
