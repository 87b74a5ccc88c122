#pragma once

#include "RyPlainVec.h"
#include "RyToolScene.h"
#include "parametric/ParametricScene.h"

#include "pluginsource/RyJointTools/tool/drags/RyDragContext.h"
#include "pluginsource/RyJointTools/tool/drags/RyHandleDrag.h"
#include "pluginsource/RyJointTools/tool/drags/makeDrag.h"
#include "pluginsource/RyJointTools/tool/handles/RyHandle.h"
#include "pluginsource/RyJointTools/tool/handles/RyHandleId.h"
#include "pluginsource/RyJointTools/tool/handles/RyHandleTable.h"
#include "rycore/math/RyLine3.h"
#include "rycore/parametric/RyLegacyBendParam.h"
#include "rycore/parametric/RyLegacySmoothScale.h"
#include "rycore/parametric/RyLegacyTwistParam.h"

/// An untidy parametric figure whose left hand is edited, with a parameter of each kind that has been fitted by hand;
/// its partner has the same values. Places in the world are worked out in double precision from the numbers of nodes
/// and controls alone.
struct RyParamDragScene : RyToolScene
{
    using Type = RyLegacyJointParam::Type;

    explicit RyParamDragScene(float figureScale = 1.0f, float generalScale = 1.7f)
    {
        doll.makeUntidy();
        doll.figure->getScaleControl()->setValue(figureScale);
        doll.makeJoints();
        doll.lHand->getZRotControl()->setValue(-20.0f);
        doll.lHand->getXRotControl()->setValue(15.0f);
        for (RyLegacyJointParam *param : doll.joint(doll.lHand)->params())
            fit(*param, generalScale);
        ryUndoStack()->clearAll();
    }

    /// Lets the tool edit a parameter of the hand.
    RyLegacyJointParam *edit(Type type)
    {
        select(doll.lHand);
        RyLegacyJointParam *param = paramOf(type);
        tool->setParam(param);
        return param;
    }
    /// One that the handle belongs to.
    RyLegacyJointParam *editFor(int id)
    {
        return edit(id >= 35 && id <= 38 ? Type::SmoothScale : id == 33 || id == 34 ? Type::Twist : Type::Bend);
    }
    RyLegacyJointParam *paramOf(Type type) const
    {
        const RyBone *driver = type == Type::SmoothScale ? doll.lArm : doll.lHand;
        return doll.joint(doll.lHand)->findParam(type, driver, -1);
    }
    RyLegacyJointParam *counterpart() const { return tool->editedPartnerParam(); }
    /// As a press of the mouse makes it, without a camera.
    RyDragContext context() const
    {
        const auto setAngle = [this](int index, float radians, const RyBendAngles::Values &start) {
            static_cast<RyLegacyBendParam *>(tool->currentParam())
                ->setAnglePushing(index, radians, tool->pushNeighborAngles(), start);
        };
        return {tool->currentNode(), tool->currentParam(), counterpart(), nullptr, setAngle};
    }
    /// The tool does not follow what it changes.
    std::unique_ptr<RyHandleDrag> dragOf(int id) const
    {
        QMetaObject::invokeMethod(tool, "removeParamConnections");
        return makeDrag(RyHandleTable::find(id), context());
    }

    // --- The world, from the numbers.

    static Vec turned(const RyQuat &q, const Vec &v)
    {
        // The right-handed turn by minus the angle: conjugate, vector, quaternion.
        const Vec u{-double(q.x), -double(q.y), -double(q.z)};
        const Vec t = cross(u, v) * 2.0;
        return v + t * double(q.w) + cross(u, t);
    }
    static Vec mapped(const RyMatrix4 &m, const Vec &v, bool isPoint)
    {
        Vec result{};
        for (int column = 0; column < 3; ++column) {
            for (int row = 0; row < 3; ++row)
                result[size_t(column)] += v[size_t(row)] * double(m[row][column]);
            if (isPoint)
                result[size_t(column)] += double(m[3][column]);
        }
        return result;
    }
    const RyBone &driver() const { return *tool->currentParam()->getDriver(); }
    /// From bone axes of the driver to the world.
    Vec direction(const Vec &boneAxes) const
    {
        return mapped(driver().getWSTransform(), turned(driver().getOrientation(), boneAxes), false);
    }
    /// From parameter space.
    Vec place(const Vec &value) const
    {
        return direction(value - toVec(driver().getOrigin())) + toVec(driver().getWSPos());
    }
    /// The place of a point of a unit sphere.
    Vec onSphere(bool isDynamic, const Vec &unitPoint) const
    {
        const RyLegacyJointParam *param = tool->currentParam();
        return place(mapped(isDynamic ? param->getDynamicMatrix() : param->getStaticMatrix(), unitPoint, true));
    }
    Vec center(bool isDynamic) const { return onSphere(isDynamic, Vec{}); }
    static Vec axis(int k, double length = 1.0)
    {
        Vec v{};
        v[size_t(k)] = length;
        return v;
    }

    // --- Rays.

    static RyVec3 fromVec(const Vec &v) { return {float(v[0]), float(v[1]), float(v[2])}; }
    static RyLine3 ray(const Vec &from, const Vec &through) { return {fromVec(from), fromVec(through)}; }
    /// Distance along a unit direction from the anchor to where the line is nearest to a ray.
    static double along(const Vec &anchor, const Vec &unitDirection, const RyLine3 &ray)
    {
        const Vec d = toVec(ray.getDirection());
        const Vec between = anchor - toVec(ray.getOrigin());
        const double b = dot(unitDirection, d);
        return (b * dot(d, between) - dot(unitDirection, between)) / (1 - b * b);
    }

    ParametricScene doll{false};

private:
    static void fit(RyLegacyJointParam &param, float generalScale)
    {
        const float dynamicValues[] = {2, -3, 1.5f, 20, -35, 50, generalScale, 4, 6, 5};
        const float staticValues[] = {-1, 2, 3, -65, 15, 110, generalScale * 0.8f, 9, 7, 12};
        RyLegacyJointParam *partner = param.findPartner();
        for (RyLegacyJointParam *side : {&param, partner}) {
            if (!side)
                continue;
            side->setApplyMatrices(true);
            if (auto *bend = qobject_cast<RyLegacyBendParam *>(side))
                bend->setAngles(1.75f, 0.62f, -0.97f, -1.69f);
            const RyVec3 origin = param.getDriver()->getOrigin();
            for (size_t i = 0; i < 10; ++i) {
                const float move = i < 3 ? origin[int(i)] : 0.0f;
                side->getDynamicSphere()->controls()[i]->setValue(dynamicValues[i] + move);
                side->getStaticSphere()->controls()[i]->setValue(staticValues[i] + move);
            }
        }
        fitZones(param, partner);
    }
    static void fitZones(RyLegacyJointParam &param, RyLegacyJointParam *partner)
    {
        const float origin = param.getDriver()->getOrigin()[param.getAxis()];
        for (RyLegacyJointParam *side : {&param, partner}) {
            auto *twist = qobject_cast<RyLegacyTwistParam *>(side);
            if (!twist)
                continue;
            twist->setApplyBlend(true);
            twist->setStart(origin - 2.0f);
            twist->setEnd(origin + 13.0f);
        }
        auto *smooth = qobject_cast<RyLegacySmoothScale *>(&param);
        auto *other = qobject_cast<RyLegacySmoothScale *>(partner);
        if (!smooth || !other)
            return;
        smooth->setApplyZones(true);
        other->setApplyZones(true);
        smooth->setHiValid(true);
        smooth->setLoValid(true);
        smooth->setHiStart(origin + 6.0f);
        smooth->setHiEnd(origin + 11.0f);
        smooth->setLoStart(origin - 5.0f);
        smooth->setLoEnd(origin - 9.0f);
        other->setLoEnd(smooth->getHiStart());
        other->setLoStart(smooth->getHiEnd());
        other->setHiStart(smooth->getLoEnd());
        other->setHiEnd(smooth->getLoStart());
    }
};
