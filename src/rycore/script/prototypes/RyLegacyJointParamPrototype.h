#pragma once

#include "rycore/parametric/RyLegacyJointParam.h"
#include "rycore/script/prototypes/RyValuesPrototype.h"

/// Parameters of joints in scripts. Values go by the names of their controllers ("staticA", "dynamic_xtran"), angles
/// are in degrees.
class RyLegacyJointParamPrototype : public RyValuesPrototype
{
    Q_OBJECT
public:
    explicit RyLegacyJointParamPrototype(QObject *parent) : RyValuesPrototype(parent) {}

    /// "bend", "smoothScale", "twist" or "curve".
    Q_INVOKABLE QString getKind() const;
    Q_INVOKABLE QString getName() const;
    Q_INVOKABLE RyLegacyJoint *getJoint() const;
    /// The parameter on the other side of the joint; null without one.
    Q_INVOKABLE RyLegacyJointParam *getPartner() const;
    /// 0 X, 1 Y, 2 Z; of a curve also 3 XY, 4 XZ, 5 YZ.
    Q_INVOKABLE int getAxis() const;
    Q_INVOKABLE void setAxis(int axis) const;
    /// Null where it is gone.
    Q_INVOKABLE RyBone *getDriver() const;
    Q_INVOKABLE void setDriver(RyBone *bone) const;

    /// Those that its kind has: "flipped", "matrices", "angles", "bulges", "blend", "zones", "high", "low".
    Q_INVOKABLE QStringList getFlagNames() const;
    Q_INVOKABLE bool getFlag(const QString &name) const;
    /// `both`: on both sides of the joint, but for "flipped", "high" and "low", in which these differ.
    Q_INVOKABLE void setFlag(const QString &name, bool onOff, bool both = false) const;

    using RyValuesPrototype::setValue;
    /// `both`: the partner's equal one, too; of a smooth-scale that is the zone seen from the other side.
    Q_INVOKABLE void setValue(const QString &name, double value, bool both) const;

    /// Of a bend: A, B, C and D.
    Q_INVOKABLE QScriptValue getAngles() const;
    Q_INVOKABLE void setAngles(double staticA, double dynamicB, double dynamicC, double staticD) const;
    /// Sets one of them (0 to 3), on both sides of the joint; with `push` neighbours that it would pass go along.
    Q_INVOKABLE void setAngle(int index, double degrees, bool push = true) const;

    /// Sixteen numbers, row by row, for row vectors.
    Q_INVOKABLE QScriptValue getDynamicMatrix() const;
    Q_INVOKABLE QScriptValue getStaticMatrix() const;
    Q_INVOKABLE void setDynamicMatrix(const QScriptValue &numbers) const;
    Q_INVOKABLE void setStaticMatrix(const QScriptValue &numbers) const;
    /// Puts the spheres, and with `both` those of the partner, around the bone of the joint.
    Q_INVOKABLE void resetMatrices(bool both = true) const;

    /// A map that holds until the next call; null where there is no mesh.
    Q_INVOKABLE RyWeightMap *getWeights() const;

protected:
    /// Of its kind, then of the two spheres.
    std::vector<RyFloatProperty *> values() const override;
    RyFloatProperty *value(const QString &name) const override;

private:
    /// The bit of a flag, 0 with a script error where the kind of `param` has none of that name.
    unsigned flag(const RyLegacyJointParam &param, const QString &name) const;
    QScriptValue toNumbers(const RyMatrix4 &matrix) const;
    bool toMatrix(const QScriptValue &numbers, RyMatrix4 *matrix) const;
};
