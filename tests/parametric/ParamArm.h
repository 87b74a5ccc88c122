#pragma once

#include "parametric/paramTexts.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/parametric/RyLegacyBendParam.h"
#include "rycore/parametric/RyLegacyBinding.h"
#include "rycore/parametric/RyLegacyCurve.h"
#include "rycore/parametric/RyLegacySmoothScale.h"
#include "rycore/parametric/RyLegacyTwistParam.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"

/// A chain of arm, elbow and hand as somebody left it: moved, turned and scaled, posed, current values beside the
/// defaults, turned bone axes. Each bone has a joint with a twist and two bends of its own, the joint of the bone above
/// the copies of them, and where two bones meet a smooth-scale stands on either side.
struct ParamArm
{
    explicit ParamArm(RySkeleton *figure = new RySkeleton) : skeleton(figure)
    {
        ryUndoStack()->clearAll();
        skeleton->setName("figure");
        skeleton->getXTransControl()->setValue(12);
        skeleton->getYRotControl()->setValue(35);
        skeleton->getScaleControl()->setValue(1.3f);
        arm = addBone(skeleton.get(), "arm", {10, 120, 3}, RyQuat(RyVec3(0.2f, 1, 0.1f), 0.4f));
        elbow = addBone(arm, "elbow", {40, 118, 2}, RyQuat(RyVec3(1, 0.3f, -0.5f), -0.9f));
        hand = addBone(elbow, "hand", {70, 117, 6}, RyQuat(RyVec3(0.1f, -0.2f, 1), 2.0f));
        auto *object = new RyObject;
        object->addShape(new RyFacetShape(makeTube()));
        binding = new RyLegacyBinding;
        object->addModifier(binding);
        skeleton->setObject(object);
        skeleton->setSelectionMap(new RySelectionMap);
        for (RyBone *bone : {arm, elbow, hand})
            addJoint(bone);
    }
    ~ParamArm() { ryUndoStack()->clearAll(); }

    static RyBone *addBone(RyNode *parent, const QString &name, const RyVec3 &origin, const RyQuat &orientation)
    {
        auto *bone = new RyBone;
        bone->setName(name);
        parent->addNodeChild(bone);
        bone->setOrigin(origin - RyVec3(1, 2, 0), true);
        bone->setEndPoint(origin + RyVec3(29, -1, 2), true);
        bone->setOrientation(orientation, true);
        bone->setOrigin(origin);
        bone->setEndPoint(origin + RyVec3(30, -2, 3));
        bone->getXRotControl()->setValue(20);
        bone->getZRotControl()->setValue(-50);
        bone->getYScaleControl()->setValue(0.8f);
        return bone;
    }

    /// A square tube around the chain, ten rings of four.
    static RyFacetMesh *makeTube()
    {
        auto *mesh = new RyFacetMesh;
        std::vector<RyVec3> positions;
        for (int ring = 0; ring < 10; ++ring) {
            const float x = 5 + 11 * float(ring);
            for (const RyVec3 &corner : {RyVec3(0, 4, 4), RyVec3(0, -4, 4), RyVec3(0, -4, -4), RyVec3(0, 4, -4)})
                positions.push_back(RyVec3(x, 119, 3) + corner);
        }
        mesh->setPositions(positions);
        std::vector<RyFacet> facets;
        for (int ring = 0; ring + 1 < 10; ++ring) {
            for (int side = 0; side < 4; ++side) {
                const int a = 4 * ring + side;
                const int b = 4 * ring + (side + 1) % 4;
                facets.push_back(RyFacet{{a, b, b + 4, a + 4}});
            }
        }
        mesh->setFacets(facets);
        return mesh;
    }

    RyLegacyJoint *addJoint(RyBone *bone)
    {
        auto *joint = new RyLegacyJoint;
        joint->setBone(bone, true);
        joint->addJointParam(new RyLegacyTwistParam("twistx", 0, bone));
        joint->addJointParam(new RyLegacyBendParam("jointy", 1, bone));
        joint->addJointParam(new RyLegacyBendParam("jointz", 2, bone));
        binding->addJoint(joint);
        RyLegacyJoint *above = binding->findJoint(bone->getNodeParent());
        if (!above)
            return joint;
        for (RyLegacyJointParam *param : joint->jointParamsIterator()) {
            RyLegacyJointParam *copy = param->copy();
            copy->setName(bone->getName() + '_' + param->getName());
            copy->setFlipped(true);
            above->addJointParam(copy);
        }
        joint->addJointParam(new RyLegacySmoothScale(above->getName() + "_smoox", 0, above->getBone()));
        above->addJointParam(new RyLegacySmoothScale(bone->getName() + "_smoox", 0, bone));
        return joint;
    }

    RyLegacyJoint *jointOf(const RyBone *bone) const { return binding->findJoint(bone); }
    RyLegacyBendParam *bendOf(const RyBone *bone, const QString &name) const
    {
        return qobject_cast<RyLegacyBendParam *>(jointOf(bone)->findParam(name));
    }
    RyLegacyTwistParam *twistOf(const RyBone *bone, const QString &name) const
    {
        return qobject_cast<RyLegacyTwistParam *>(jointOf(bone)->findParam(name));
    }
    RyLegacySmoothScale *scaleOf(const RyBone *bone, const QString &name) const
    {
        return qobject_cast<RyLegacySmoothScale *>(jointOf(bone)->findParam(name));
    }

    RyRef<RySkeleton> skeleton;
    RyBone *arm = nullptr;
    RyBone *elbow = nullptr;
    RyBone *hand = nullptr;
    RyLegacyBinding *binding = nullptr;
};
