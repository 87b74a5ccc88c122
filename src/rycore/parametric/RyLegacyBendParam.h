#pragma once

#include "rycore/parametric/RyBendAngles.h"
#include "rycore/parametric/RyLegacyJointParam.h"

/// How far vertices follow a turn of the driver about one of its axes: four rays about that axis, and how the surface
/// bulges when it turns. Vertices between the dynamic rays B and C follow wholly, beyond the static rays A and D not at
/// all. The rays run downward from A over B and C to D. Controllers hold degrees, everything else radians.
class RyLegacyBendParam : public RyLegacyJointParam
{
    Q_OBJECT
public:
    explicit RyLegacyBendParam(const QString &name = QString(), int axis = 0, RyBone *driver = nullptr);

    Type type() const override { return Bend; }
    bool applyAngles() const { return has(ApplyAngles); }
    void setApplyAngles(bool apply) { setFlag(ApplyAngles, apply); }
    bool applyBulges() const { return has(ApplyBulges); }
    void setApplyBulges(bool apply) { setFlag(ApplyBulges, apply); }

    float getStaticA() const { return angle(0); }
    float getDynamicB() const { return angle(1); }
    float getDynamicC() const { return angle(2); }
    float getStaticD() const { return angle(3); }
    void setStaticA(float radians) { setAngle(0, radians); }
    void setDynamicB(float radians) { setAngle(1, radians); }
    void setDynamicC(float radians) { setAngle(2, radians); }
    void setStaticD(float radians) { setAngle(3, radians); }
    void getAngles(float &staticA, float &dynamicB, float &dynamicC, float &staticD) const;
    void setAngles(float staticA, float dynamicB, float dynamicC, float staticD);
    /// What the four angle controllers say, in degrees.
    RyBendAngles::Values angleValues() const;
    /// Sets one angle (0 to 3 for A to D), here and on the partner where that is a bend, as a drag does that began at
    /// `start`: the others go back to where they were then. `push`: neighbours that it would pass go along, and the
    /// partner takes all four; otherwise it is set as asked, and the partner takes this one alone. Back at its start an
    /// angle pushes nothing, so that all four are what they were.
    void setAnglePushing(int index, float radians, bool push, const RyBendAngles::Values &start);
    void setAnglePushing(int index, float radians, bool push);
    /// The same for a number of a controller, which stays as it is.
    void setAngleValuePushing(int index, float degrees, bool push, const RyBendAngles::Values &start);
    RyFloatProperty *getStaticAngleAController() const { return controllers()[0]; }
    RyFloatProperty *getDynamicAngleBController() const { return controllers()[1]; }
    RyFloatProperty *getDynamicAngleCController() const { return controllers()[2]; }
    RyFloatProperty *getStaticAngleDController() const { return controllers()[3]; }

    // --- Fractions of the distance from the bone's line: 0.1 swells by 10 % at a quarter turn.
    RyFloatProperty *getPosLeftBulgeController() const { return controllers()[4]; }
    RyFloatProperty *getPosRightBulgeController() const { return controllers()[5]; }
    RyFloatProperty *getNegLeftBulgeController() const { return controllers()[6]; }
    RyFloatProperty *getNegRightBulgeController() const { return controllers()[7]; }

    RyLegacyJointParam *copy() const override;

private:
    float angle(int index) const;
    void setAngle(int index, float radians);
    void setAngleValue(int index, float degrees);
    void setAngleValues(const RyBendAngles::Values &degrees);
};
