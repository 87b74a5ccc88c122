#pragma once

#include "rycore/base/RyFloatProperty.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/parametric/RyLegacyBendParam.h"
#include "rycore/parametric/RyLegacyBinding.h"
#include "rycore/parametric/RyLegacySmoothScale.h"
#include "rycore/parametric/RyLegacyTwistParam.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/scene/RySkeleton.h"
#include "support/RyTest.h"

#include <array>
#include <cmath>
#include <vector>

/// A tube along X from 0 to 90 with a bone for each 30, every bone with orientation and rotation order of its own; the
/// skeleton is posed, scaled and turned, and no default is the current value. Groups end at the bones' origins.
struct ArmFixture
{
    static constexpr int Rings = 46;
    static constexpr int Around = 12;

    ArmFixture()
    {
        skeleton = RyRef<RySkeleton>(new RySkeleton);
        skeleton->setName("arm");
        RyNode *parent = skeleton.get();
        for (int i = 0; i < 3; ++i) {
            auto *bone = new RyBone;
            bone->setName(QString("bone%1").arg(i));
            parent->addNodeChild(bone);
            bone->setOrigin({30.0f * i + 1, 2, -1}, true);
            bone->setEndPoint({30.0f * i + 31, 1, 1}, true);
            bone->setOrientation(RyQuat(RyVec3(0, 1, 0), 0.3f), true);
            bone->setOrigin({30.0f * i, 0, 0});
            bone->setEndPoint({30.0f * i + 30, 0, 0});
            bone->setOrientation(RyQuat(RyVec3(1, 0, 0), 0.5f * i));
            bone->setRotationOrder(RyRotationOrder(i % 2));
            bones.push_back(bone);
            parent = bone;
        }
        mesh = new RyFacetMesh;
        std::vector<RyVec3> positions;
        for (int ring = 0; ring < Rings; ++ring) {
            for (int i = 0; i < Around; ++i) {
                const double angle = 2 * M_PI * i / Around;
                positions.push_back(
                    {2.0f * float(ring), float(4 * std::cos(angle)), float(4.5 * std::sin(angle) + 0.1 * ring)});
            }
        }
        mesh->setPositions(positions);
        std::vector<RyFacet> facets;
        std::vector<int> groups;
        for (int ring = 0; ring + 1 < Rings; ++ring) {
            for (int i = 0; i < Around; ++i) {
                const int next = (i + 1) % Around;
                const int row = ring * Around;
                facets.push_back({{row + i, row + Around + i, row + Around + next, row + next}, -1});
                groups.push_back(ring / 15);
            }
        }
        mesh->setFacets(facets);
        for (int i = 0; i < 3; ++i)
            mesh->createFaceGroup(QString("group%1").arg(i));
        mesh->setGroupsOfFacets(groups);
        map = new RySelectionMap;
        for (int i = 0; i < 3; ++i)
            map->addPair(QString("group%1").arg(i), bones[size_t(i)], false);
        skeleton->setSelectionMap(map);
        shape = new RyFacetShape(mesh);
        object = new RyObject;
        object->addShape(shape);
        binding = new RyLegacyBinding;
        object->addModifier(binding);
        skeleton->setObject(object);
        skeleton->getXTransControl()->setValue(17);
        skeleton->getYRotControl()->setValue(40);
        skeleton->getScaleControl()->setValue(1.7f);
        for (int i = 0; i < 3; ++i)
            addJoint(i);
    }

    void addJoint(int i)
    {
        RyBone *bone = bones[size_t(i)];
        auto *joint = new RyLegacyJoint;
        joint->setBone(bone, true);
        binding->addJoint(joint);
        joints.push_back(joint);
        for (int axis = 0; axis < 3; ++axis) {
            joint->addJointParam(make(axis, bone, i == 0));
            if (i == 0)
                continue;
            RyLegacyJointParam *copy = make(axis, bone, false);
            copy->setFlipped(true);
            joints[size_t(i - 1)]->addJointParam(copy);
        }
        if (i == 0)
            return;
        joint->addJointParam(new RyLegacySmoothScale("p", 0, bones[size_t(i - 1)]));
        auto *other = new RyLegacySmoothScale("q", 0, bone);
        other->setHiValid(false);
        other->setLoValid(true);
        joints[size_t(i - 1)]->addJointParam(other);
    }

    static RyLegacyJointParam *make(int axis, RyBone *bone, bool isRoot)
    {
        if (axis == 0)
            return new RyLegacyTwistParam(QString("twist"), axis, bone);
        auto *bend = new RyLegacyBendParam(QString("bend%1").arg(axis), axis, bone);
        bend->setApplyAngles(!isRoot);
        return bend;
    }

    /// Of the parameters on both sides of a joint.
    template<class P, class Change>
    void changeBoth(int bone, int axis, Change change)
    {
        for (int joint = std::max(bone - 1, 0); joint <= bone; ++joint) {
            for (RyLegacyJointParam *param : joints[size_t(joint)]->params()) {
                auto *wanted = qobject_cast<P *>(param);
                if (wanted && param->getDriver() == bones[size_t(bone)] && param->getAxis() == axis)
                    change(wanted);
            }
        }
    }

    void pose()
    {
        bones[1]->getXRotControl()->setValue(60);
        bones[1]->getYRotControl()->setValue(45);
        bones[1]->getZRotControl()->setValue(90);
        bones[2]->getZRotControl()->setValue(-50);
        bones[2]->getXTransControl()->setValue(2);
        bones[0]->getYRotControl()->setValue(20);
    }

    /// The farthest way between the same points of two lists; endless where one of them is longer.
    static double apart(const std::vector<RyVec3> &a, const std::vector<RyVec3> &b)
    {
        double most = a.size() == b.size() ? 0.0 : 1e30;
        for (size_t i = 0; i < a.size() && i < b.size(); ++i)
            most = std::max(most, double((a[i] - b[i]).length()));
        return most;
    }

    const std::vector<RyVec3> &deformed() { return object->getDeformedPositions(); }
    int vertex(int ring, int around) const { return ring * Around + around; }

    RyRef<RySkeleton> skeleton;
    std::vector<RyBone *> bones;
    RyFacetMesh *mesh = nullptr;
    RyFacetShape *shape = nullptr;
    RySelectionMap *map = nullptr;
    RyObject *object = nullptr;
    RyLegacyBinding *binding = nullptr;
    std::vector<RyLegacyJoint *> joints;
};
