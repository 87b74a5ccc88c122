#pragma once

#include "rycore/base/RyElement.h"
#include "rycore/base/RyRefCounted.h"
#include "rycore/parametric/RyLegacyJointParam.h"

#include <QPointer>

#include <vector>

class RyLegacyBinding;

/// What deforms where a bone of a parametric figure meets its parent and its children: parameters that the bone itself
/// drives, and copies of those of its children, which act on this side. Edits are undoable where a hold is open.
class RyLegacyJoint : public RyElement, public RyRefCountedItem
{
    Q_OBJECT
public:
    RyLegacyJoint() = default;
    ~RyLegacyJoint() override;

    /// The joint of that bone in the binding of its skeleton's object, else of a figure whose bone joined that
    /// skeleton (RyLegacyBinding::isJoined); null without one and for null.
    static RyLegacyJoint *findJoint(const RyNode *node);

    RyBone *getBone() const { return m_bone.data(); }
    /// `takeName`: named after the bone while it has no name.
    void setBone(RyBone *bone, bool takeName = false);
    RyLegacyBinding *getBinding() const { return m_binding; }
    /// The face group on which the parameters work: the bone's, else that of the nearest bone above that has one; empty
    /// where none has, which stands for the whole mesh.
    QString getGroupName() const;

    // --- Parameters, in the order in which they were added.
    const std::vector<RyLegacyJointParam *> &params() const { return m_params; }
    /// A copy of the list: stable against changes during a walk.
    std::vector<RyLegacyJointParam *> jointParamsIterator() const { return m_params; }
    /// False for null and for a parameter that is on a joint. Takes ownership.
    bool addJointParam(RyLegacyJointParam *param);
    /// The parameter is deleted unless something else (an undo step) holds it.
    bool removeJointParam(RyLegacyJointParam *param);
    /// The first of that type with that driver, and axis unless that is negative.
    RyLegacyJointParam *findParam(RyLegacyJointParam::Type type, const RyBone *driver, int axis) const;
    RyLegacyJointParam *findParam(const QString &name) const;

    /// With its parameters; in no binding until the duplicate of its binding takes it.
    RyElement *doDuplicateElement(RyElementDuplicateContext *context) override;
    /// The bone's duplicate becomes the bone.
    void resolveDuplicate(const RyElement *original, const RyElementDuplicateContext &context) override;

signals:
    void jointChanged();

private:
    friend class RyLegacyBinding;
    friend class RyLegacyJointIndex;
    struct BoneValue;
    struct ParamList;
    void applyBone(RyBone *bone);
    void insertParam(RyLegacyJointParam *param, int index);
    void takeParam(RyLegacyJointParam *param, int index);

    QPointer<RyBone> m_bone;
    const RyNode *m_indexedBone = nullptr; // by which it is found; compared, never followed
    RyLegacyBinding *m_binding = nullptr;
    std::vector<RyLegacyJointParam *> m_params; // each counted once
};
