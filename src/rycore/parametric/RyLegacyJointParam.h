#pragma once

#include "rycore/base/RyElement.h"
#include "rycore/base/RyRefCounted.h"
#include "rycore/math/RyMatrix4.h"
#include "rycore/parametric/RyLegacyJointSphere.h"
#include "rycore/scene/RyBone.h"

#include <QPointer>

#include <array>
#include <memory>
#include <vector>

class RyFloatProperty;
class RyLegacyJoint;
class RyNode;
class RySkeleton;
class RyWeightMap;

/// A parameter of a joint: says how far vertices follow one motion of a bone, its driver. Its values live in parameter
/// space: bone axes of the driver about the driver's origin, `x(p) = orientation^-1 (p - origin) + origin`, in
/// centimetres. Every value is undoable where a hold is open.
///
/// An edit (`beginEdit` to `finishEdit` or `cancelEdit`) covers flags, axis, all controllers and both spheres, and
/// takes the partner along, the parameter on the other side of the joint.
class RyLegacyJointParam : public RyElement, public RyRefCountedItem
{
    Q_OBJECT
public:
    enum Type { Bend = 0, SmoothScale = 1, Twist = 2, Curve = 3 };
    ~RyLegacyJointParam() override;

    virtual Type type() const = 0;
    /// 0 X, 1 Y, 2 Z of the driver's bone axes; of a curve also a plane: 3 XY, 4 XZ, 5 YZ.
    int getAxis() const { return m_state.axis; }
    void setAxis(int axis);
    /// The bone whose motion it is about; null when it is gone.
    RyBone *getDriver() const { return m_driver.data(); }
    void setDriver(RyBone *driver);
    /// The joint that has this parameter, null when none.
    RyLegacyJoint *getJoint() const { return m_joint; }
    /// Marks the copy on the side of the joint that rests: vertices there stay where no zone applies.
    bool isFlipped() const { return has(Flipped); }
    void setFlipped(bool flipped) { setFlag(Flipped, flipped); }

    // --- Spheres: full weight inside the dynamic one, none outside the static one.
    bool applyMatrices() const { return has(ApplyMatrices); }
    void setApplyMatrices(bool apply) { setFlag(ApplyMatrices, apply); }
    RyLegacyJointSphere *getDynamicSphere() const { return m_dynamic.get(); }
    RyLegacyJointSphere *getStaticSphere() const { return m_static.get(); }
    RyMatrix4 getDynamicMatrix() const { return m_dynamic->getMatrix(); }
    RyMatrix4 getStaticMatrix() const { return m_static->getMatrix(); }
    void setDynamicMatrix(const RyMatrix4 &matrix);
    void setStaticMatrix(const RyMatrix4 &matrix);
    /// `asDefault`: default values and current ones; otherwise current ones alone.
    void setMatrices(const RyMatrix4 &dynamic, const RyMatrix4 &staticMatrix, bool asDefault);

    /// How far vertices follow, on those of the joint's group that the parameter acts on; 0 elsewhere. Null without
    /// a mesh, empty without vertices. The map belongs to the parameter and holds until its next call.
    RyWeightMap *getWeights(const RySkeleton *skeleton);

    /// The parameter on the other side of the joint: same driver and axis, on the joint of the driver and on that of
    /// the driver's parent; of a smooth-scale the one that says the rest. Null when there is none.
    RyLegacyJointParam *findPartner() const;

    /// The controllers of its kind, in the order in which they are saved; those of the spheres are not among them.
    const std::vector<RyFloatProperty *> &controllers() const { return m_controllers; }
    /// Of which kind flags are set, for files and dumps; bits of `Flag`.
    unsigned flags() const { return m_state.flags; }
    void setFlags(unsigned flags);
    enum Flag : unsigned {
        Flipped = 1,
        ApplyMatrices = 2,
        ApplyAngles = 4,
        ApplyBulges = 8,
        ApplyBlend = 16,
        ApplyZones = 32,
        HighSide = 64,
        LowSide = 128
    };
    /// Grows with every change; caches compare it.
    quint64 revision() const { return m_revision; }

    /// A parameter of the same kind with the same values, name and flags, driven by the same bone, on no joint.
    virtual RyLegacyJointParam *copy() const = 0;
    /// Takes the values, flags and axis of one of the same kind; name and driver stay.
    void copyValuesFrom(const RyLegacyJointParam &other);

    /// On no joint until the duplicate of its joint takes it; the spheres are duplicated with it.
    RyElement *doDuplicateElement(RyElementDuplicateContext *context) override;
    /// The driver's duplicate becomes the driver.
    void resolveDuplicate(const RyElement *original, const RyElementDuplicateContext &context) override;
    void propertyChanged(RyFloatProperty *property) override;

signals:
    /// Anything but the name; once per outermost edit.
    void paramChanged();
    /// It leaves its joint.
    void aboutToBeRemoved();

protected:
    RyLegacyJointParam(const QString &name, int axis, RyBone *driver, unsigned flags);
    /// A controller of its own, in the group of that name.
    RyFloatProperty *addController(const QString &group, const QString &name, const QString &label, float value,
                                   float limit);
    bool has(Flag flag) const { return m_state.flags & flag; }
    void setFlag(Flag flag, bool on);
    template<typename P>
    P *copyInto(P *copy) const
    {
        copy->setObjectName(objectName());
        copy->copyValuesFrom(*this);
        return copy;
    }

    void editBegun() override;
    void editFinished() override;
    void editCancelled() override;

private:
    friend class RyLegacyJoint;
    friend class RyLegacyJointSphere;
    struct State
    {
        int axis = 0;
        unsigned flags = 0;
        bool operator==(const State &) const = default;
    };
    struct StateValue;
    struct DriverValue;
    struct Snapshot;
    std::vector<RyFloatProperty *> allControllers() const;
    void setState(const State &state);
    void applyState(const State &state);
    void applyDriver(RyBone *driver);
    void restore(const Snapshot &before);
    void valuesChanged();

    State m_state;
    QPointer<RyBone> m_driver;
    RyLegacyJoint *m_joint = nullptr;
    std::unique_ptr<RyLegacyJointSphere> m_dynamic;
    std::unique_ptr<RyLegacyJointSphere> m_static;
    std::vector<RyFloatProperty *> m_controllers;
    RyRef<RyWeightMap> m_weights;
    std::unique_ptr<Snapshot> m_snapshot; // within an edit
    QPointer<RyLegacyJointParam> m_led;   // the partner whose edit this one's edit opened
    bool m_isLed = false;
    bool m_touched = false; // within an edit
    quint64 m_revision = 1;
};
