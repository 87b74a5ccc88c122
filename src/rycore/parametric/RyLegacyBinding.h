#pragma once

#include "rycore/parametric/RyLegacyDeformer.h"
#include "rycore/parametric/RyLegacyJoint.h"
#include "rycore/parametric/RyLegacyRigCache.h"
#include "rycore/scene/RyModifier.h"

#include <memory>

class RyNode;
class RySkeleton;
class RyWeightMap;
struct RyLegacyFit;

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
    /// True for a bone of another skeleton that the figure follows or hangs on: a root bone that inherited it, or one
    /// below such a bone.
    static bool isJoined(const RySkeleton &figure, const RyNode *bone);
    /// Where a new child of that node gets its joint: the binding that has the joint of the node, or of the nearest
    /// node above it that has one; else that of its skeleton's object. Null without one and for null.
    static RyLegacyBinding *bindingForChildOf(const RyNode *node);
    /// The figure whose object has this; null when none.
    RySkeleton *getFigure() const;

    // --- Joints, in the order in which they were added.
    const std::vector<RyLegacyJoint *> &joints() const { return m_joints; }
    /// The first joint of exactly that bone; null without one and for null.
    RyLegacyJoint *findJoint(const RyNode *bone) const;
    /// False for null and for a joint that is in a binding. Takes ownership.
    bool addJoint(RyLegacyJoint *joint);
    /// The joint is deleted unless something else (an undo step) holds it.
    bool removeJoint(RyLegacyJoint *joint);

    /// See RyLegacyJointParam::getWeights; a new map. For a bone that joined another skeleton, that of the binding's
    /// figure also where it is asked of the skeleton.
    RyWeightMap *makeWeights(const RyLegacyJointParam &param, const RySkeleton *skeleton);

    bool deform(RyShapePoints &points) override;
    /// What `deform` works with, with counters of what it did; as of its last call.
    const RyLegacyDeformer &deformer() const { return m_deformer; }
    std::vector<const RyElement *> parts() const override;
    /// See RyLegacyRig::bonesOf; none without a figure.
    std::vector<RyNode *> bones() const override;
    /// The lowest one that a vertex follows by half or more.
    RyVertexBones vertexBones(int vertexCount) const override;
    std::vector<quint64> vertexBonesKey() const override;

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
    void announce();

    std::vector<RyLegacyJoint *> m_joints; // each counted once
    bool m_touched = false;                // within an edit
    RyLegacyDeformer m_deformer;
    RyLegacyRigCache m_rig;
    std::shared_ptr<const RyLegacyFit> m_fit;
};
