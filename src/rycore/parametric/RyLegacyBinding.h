#pragma once

#include "rycore/parametric/RyLegacyDeformer.h"
#include "rycore/parametric/RyLegacyJoint.h"
#include "rycore/parametric/RyLegacyRigCache.h"
#include "rycore/scene/RyModifier.h"

#include <QMultiHash>

#include <memory>

class RyNode;
class RySkeleton;
struct RyLegacyFit;
class RyWeightMap;

/// Moves the vertices of a parametric figure's shape with its bones: the joints with their parameters say how far each
/// vertex follows each motion of each bone. Edits are undoable where a hold is open.
class RyLegacyBinding : public RyModifier
{
    Q_OBJECT
public:
    RyLegacyBinding();
    ~RyLegacyBinding() override;

    /// The binding of that object, or of the object of that skeleton; null without one and for null.
    static RyLegacyBinding *findBinding(const RySkeleton *skeleton);
    static RyLegacyBinding *findBinding(const RyObject *object);

    // --- Joints, in the order in which they were added.
    const std::vector<RyLegacyJoint *> &joints() const { return m_joints; }
    /// The first joint of exactly that bone; null without one and for null.
    RyLegacyJoint *findJoint(const RyNode *bone) const;
    /// False for null and for a joint that is in a binding. Takes ownership.
    bool addJoint(RyLegacyJoint *joint);
    /// The joint is deleted unless something else (an undo step) holds it.
    bool removeJoint(RyLegacyJoint *joint);

    /// See RyLegacyJointParam::getWeights; a new map.
    RyWeightMap *makeWeights(const RyLegacyJointParam &param, const RySkeleton *skeleton);

    bool deform(RyShapePoints &points) override;
    /// What `deform` works with, with counters of what it did; as of its last call.
    const RyLegacyDeformer &deformer() const { return m_deformer; }
    std::vector<const RyElement *> parts() const override;

    /// With its joints, on no object. Their bones and drivers are those of the duplicates once these are resolved.
    RyElement *doDuplicateElement(RyElementDuplicateContext *context) override;

    /// The fit that was made last, with what it was made from; null before. Nothing here looks at it.
    const std::shared_ptr<const RyLegacyFit> &keptFit() const { return m_fit; }
    void keepFit(std::shared_ptr<const RyLegacyFit> fit) { m_fit = std::move(fit); }

signals:
    /// Joints, parameters or values changed; once per outermost edit of the binding, where one is open.
    void bindingChanged();

protected:
    void editBegun() override { m_touched = false; }
    void editFinished() override;
    /// Parameters have snapshots of their own; what was changed stays.
    void editCancelled() override { editFinished(); }

private:
    friend class RyLegacyJoint;
    struct JointList;
    void insertJoint(RyLegacyJoint *joint, int index);
    void takeJoint(RyLegacyJoint *joint, int index);
    /// Finds the joint by its bone from here on.
    void indexBone(RyLegacyJoint *joint);
    void dropBone(RyLegacyJoint *joint);
    void announce();

    std::vector<RyLegacyJoint *> m_joints; // each counted once
    QMultiHash<const RyNode *, RyLegacyJoint *> m_jointsOfBones;
    bool m_touched = false; // within an edit
    RyLegacyDeformer m_deformer;
    RyLegacyRigCache m_rig;
    std::shared_ptr<const RyLegacyFit> m_fit;
};
