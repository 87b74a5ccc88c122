#pragma once

#include "rycore/parametric/RyLegacyJointParam.h"

/// How far vertices take the scale of the driver, where two bones meet: the parameter on the child's joint that the
/// parent drives, and the one on the parent's joint that the child drives. Each has a zone on one side at least, from 1
/// at its start to 0 at its end. A zone counts from when it is put in place (see RyLegacyTwistParam::Far).
class RyLegacySmoothScale : public RyLegacyJointParam
{
    Q_OBJECT
public:
    explicit RyLegacySmoothScale(const QString &name = QString(), int axis = 0, RyBone *driver = nullptr);

    Type type() const override { return SmoothScale; }
    bool applyZones() const { return has(ApplyZones); }
    void setApplyZones(bool apply) { setFlag(ApplyZones, apply); }
    /// Which of the two zones there are.
    bool hiValid() const { return has(HighSide); }
    bool loValid() const { return has(LowSide); }
    void setHiValid(bool valid) { setFlag(HighSide, valid); }
    void setLoValid(bool valid) { setFlag(LowSide, valid); }

    /// Coordinates in parameter space.
    float getHiStart() const { return zone(0); }
    float getHiEnd() const { return zone(1); }
    float getLoStart() const { return zone(2); }
    float getLoEnd() const { return zone(3); }
    void setHiStart(float value) { setZone(0, value); }
    void setHiEnd(float value) { setZone(1, value); }
    void setLoStart(float value) { setZone(2, value); }
    void setLoEnd(float value) { setZone(3, value); }
    RyFloatProperty *getHiStartController() const { return controllers()[0]; }
    RyFloatProperty *getHiEndController() const { return controllers()[1]; }
    RyFloatProperty *getLoStartController() const { return controllers()[2]; }
    RyFloatProperty *getLoEndController() const { return controllers()[3]; }

    RyLegacyJointParam *copy() const override;

private:
    float zone(int index) const;
    void setZone(int index, float value);
};
