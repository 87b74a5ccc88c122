#pragma once

#include "rycore/parametric/RyLegacyJointParam.h"

/// How far vertices follow a twist of the driver: 0 where the coordinate on the axis is the start, 1 at the end, which
/// may lie below it. The zone counts from when it is put in place: both ends nearer than `Far`.
class RyLegacyTwistParam : public RyLegacyJointParam
{
    Q_OBJECT
public:
    explicit RyLegacyTwistParam(const QString &name = QString(), int axis = 0, RyBone *driver = nullptr);

    Type type() const override { return Twist; }
    bool applyBlend() const { return has(ApplyBlend); }
    void setApplyBlend(bool apply) { setFlag(ApplyBlend, apply); }
    /// Coordinates in parameter space.
    float getStart() const;
    void setStart(float start);
    float getEnd() const;
    void setEnd(float end);
    RyFloatProperty *getBlendStartPostionController() const { return controllers()[0]; }
    RyFloatProperty *getBlendEndPostionController() const { return controllers()[1]; }

    RyLegacyJointParam *copy() const override;

    /// Where the ends of a zone lie that nobody has put in place, and the nearest that still counts as such.
    static constexpr float Farthest = 24384.0f;
    static constexpr float Far = 24140.16f;
};
