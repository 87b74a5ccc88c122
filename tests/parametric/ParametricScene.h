#pragma once

#include "rycore/base/RyFloatProperty.h"
#include "rycore/figure/RyLegacyFigure.h"
#include "rycore/figure/RyLegacyJointMaker.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/parametric/RyLegacyBinding.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/undo/RyUndoStack.h"

/// The application's scene with a parametric figure, whose bones have joints and tubes of facets around them, each
/// tube a face group of the bone's name. Empty at the end.
///
///     doll - chest - lArm - lHand - lTip
///                  - rArm - rHand - rTip
class ParametricScene
{
public:
    static constexpr float Radius = 4.0f;

    /// `alone`: in an empty scene; otherwise beside what is there.
    explicit ParametricScene(bool alone = true)
    {
        if (alone)
            reset();
        figure = new RyLegacyFigure;
        figure->setName(QStringLiteral("doll"));
        auto *object = new RyObject;
        binding = new RyLegacyBinding;
        object->addModifier(binding);
        figure->setObject(object);
        figure->setSelectionMap(new RySelectionMap);
        ryScene()->addNode(figure);
        chest = addBone(figure, "chest", {0, 100, 0}, {0, 120, 1}, 2);
        lArm = addBone(chest, "lArm", {10, 118, 0}, {40, 114, 3}, 0);
        lHand = addBone(lArm, "lHand", {40, 114, 3}, {58, 110, 6}, 0);
        lTip = addBone(lHand, "lTip", {58, 110, 6}, {66, 109, 7}, 1);
        rArm = addBone(chest, "rArm", {-10, 118, 0}, {-40, 114, 3}, 0);
        rHand = addBone(rArm, "rHand", {-40, 114, 3}, {-58, 110, 6}, 0);
        rTip = addBone(rHand, "rTip", {-58, 110, 6}, {-66, 109, 7}, 1);
        addTubes();
        ryUndoStack()->clearAll();
    }
    ~ParametricScene() { reset(); }
    ParametricScene(const ParametricScene &) = delete;
    ParametricScene &operator=(const ParametricScene &) = delete;

    /// Turned bone axes, current values that are no defaults, and a posed, scaled and turned figure.
    void makeUntidy()
    {
        for (RyBone *bone : figure->getAllBones()) {
            const float sign = bone->getName().startsWith('r') ? -1.0f : 1.0f;
            bone->setOrientation(RyQuat({1, 2.0f * sign, 3.0f * sign}, 0.4f), true);
            bone->getOrientXControl()->setValue(bone->getOrientXControl()->getValue() + 7.0f);
        }
        lArm->setOrigin({11, 117, -1});
        lHand->setEndPoint({60, 111, 4});
        lArm->getZRotControl()->setValue(25.0f);
        rHand->getYRotControl()->setValue(-40.0f);
        figure->getYRotControl()->setValue(30.0f);
        figure->getXTransControl()->setValue(12.0f);
        figure->getScaleControl()->setValue(1.2f);
        ryUndoStack()->clearAll();
    }
    /// Joints as the bones stand, parents first.
    void makeJoints()
    {
        for (RyBone *bone : figure->getAllBones())
            RyLegacyJointMaker(bone, RyLegacyJointMaker::Side::ByEndPoint).make(bone->getNodeParent(), true);
        ryUndoStack()->clearAll();
    }
    RyLegacyJoint *joint(const RyBone *bone) const { return binding->findJoint(bone); }
    RyLegacyJointParam *param(const RyBone *bone, const char *name) const
    {
        return joint(bone)->findParam(QString::fromLatin1(name));
    }
    RyFacetMesh *mesh() const
    {
        return qobject_cast<RyFacetMesh *>(figure->getObject()->getCurrentShape()->getGeometry());
    }

    RyLegacyFigure *figure;
    RyLegacyBinding *binding;
    RyBone *chest;
    RyBone *lArm;
    RyBone *lHand;
    RyBone *lTip;
    RyBone *rArm;
    RyBone *rHand;
    RyBone *rTip;

private:
    static RyBone *addBone(RyNode *parent, const char *name, const RyVec3 &origin, const RyVec3 &end, int order)
    {
        auto *bone = new RyBone;
        bone->setName(QString::fromLatin1(name));
        bone->setRotationOrder(RyRotationOrder(order));
        bone->setOrigin(origin, true);
        bone->setEndPoint(end, true);
        bone->setInheritScale(qobject_cast<RySkeleton *>(parent) != nullptr);
        parent->addNodeChild(bone);
        ryScene()->addNode(bone);
        return bone;
    }

    /// Eight points about the bone in each of five rings; arms of both sides are mirror images.
    void addTubes()
    {
        constexpr int Around = 8;
        constexpr int Rings = 5;
        std::vector<RyVec3> positions;
        std::vector<RyFacet> facets;
        std::vector<int> groups;
        auto *mesh = new RyFacetMesh;
        const std::vector<RyBone *> bones = figure->getAllBones();
        for (size_t b = 0; b < bones.size(); ++b) {
            const RyVec3 origin = bones[b]->getOrigin();
            const RyVec3 way = bones[b]->getEndPoint() - origin;
            const RyVec3 side = way.cross({0, 0, 1}).normalized() * Radius;
            const RyVec3 other = RyVec3(0, 0, 1) * Radius;
            const int first = int(positions.size());
            for (int ring = 0; ring < Rings; ++ring) {
                for (int i = 0; i < Around; ++i) {
                    const float angle = float(i) * 0.785398163f;
                    positions.push_back(origin + way * (float(ring) / float(Rings - 1)) + side * std::cos(angle) +
                                        other * std::sin(angle));
                }
            }
            for (int ring = 0; ring + 1 < Rings; ++ring) {
                for (int i = 0; i < Around; ++i) {
                    const int next = (i + 1) % Around;
                    const int row = first + ring * Around;
                    facets.push_back({{row + i, row + next, row + Around + next, row + Around + i}, -1});
                    groups.push_back(int(b));
                }
            }
        }
        mesh->setPositions(positions);
        mesh->setFacets(facets);
        for (RyBone *bone : bones) {
            mesh->createFaceGroup(bone->getName());
            figure->getSelectionMap()->addPair(bone->getName(), bone, false);
        }
        mesh->setGroupsOfFacets(groups);
        figure->getObject()->addShape(new RyFacetShape(mesh));
    }
    static void reset()
    {
        ryUndoStack()->clearAll();
        ryScene()->clear();
    }
};
