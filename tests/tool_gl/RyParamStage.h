#pragma once

#include "RyDrawingStage.h"

#include "tool/RyParamTruth.h"

#include "rycore/parametric/RyLegacyBendParam.h"
#include "rycore/parametric/RyLegacyJoint.h"
#include "rycore/parametric/RyLegacySmoothScale.h"
#include "rycore/parametric/RyLegacyTwistParam.h"

/// The drawing stage with an untidy parametric figure, whose left arm has values of its own in each parameter: turned
/// and uneven spheres, angles that are none of a new joint, zones within the arm. No bones and boundaries are drawn.
struct RyParamStage : RyDrawingStage
{
    explicit RyParamStage(RyFigureLook look = RyFigureLook::Untidy)
    {
        if (look != RyFigureLook::Plain)
            doll.makeUntidy();
        doll.makeJoints();
        ryMakeLook(doll, look);
        for (RyLegacyJointParam *param : doll.joint(doll.lArm)->params())
            setValues(*param);
        tool->setBoneDrawMode(RyJointEditorTool::NoBones);
        tool->setDrawMeshBoundaries(false);
        tool->setWeightVis(false);
        tool->setDynamicColor(QColor(12, 34, 56));
        tool->setStaticColor(QColor(210, 120, 30));
        lookAtArm(150.0f);
        select(doll.lArm);
    }

    /// Another tool in place of the first one, which reads the settings anew.
    void renewTool()
    {
        manager->deleteTools();
        tool = new RyJointEditorTool;
        manager->addTool(tool);
        select(doll.lArm);
    }
    /// From so far away that all of its handles but the rays' tips are in the picture.
    void lookAtArm(float distance)
    {
        lookAtPlace((doll.lArm->getWSPos() + doll.lArm->getWSEndPoint()) * 0.5f, distance);
    }
    void lookAtPlace(const RyVec3 &place, float distance)
    {
        viewport->getCamera()->lookAt(place + RyVec3(0.35f, 0.3f, 0.9f).normalized() * distance, place);
    }
    /// No bodies of spheres.
    void showRingsOnly() const { tool->setSphereDrawing(0); }
    /// Of the current node's own parameters, and of those that the parent drives.
    RyParamTruth truth() const { return {*doll.lArm}; }
    RyParamTruth parentTruth() const { return {*doll.chest}; }
    /// The ids of a pick pass in the order in which they are first drawn.
    QList<int> drawnIds()
    {
        QList<int> ids;
        const auto recording = draw(PickPass);
        for (const auto &primitive : recording->primitives) {
            for (const auto &color : primitive.colors) {
                if (!ids.contains(int(color.r)))
                    ids.append(int(color.r));
            }
        }
        return ids;
    }
    std::vector<RyVec3> worldVertices(const RyGLRecorder::Primitive &primitive) const
    {
        std::vector<RyVec3> places;
        for (size_t i = 0; i < primitive.vertices.size(); ++i)
            places.push_back(world(primitive, i));
        return places;
    }
    static RyGLRecorder::Color dynamicColor() { return rgbBytes(12, 34, 56); }
    static RyGLRecorder::Color staticColor() { return rgbBytes(210, 120, 30); }

    /// The first parameter of the kind on the arm's joint; makes it the current one.
    template<typename P>
    P &take(RyLegacyJointParam::Type type)
    {
        for (RyLegacyJointParam *param : doll.joint(doll.lArm)->params()) {
            if (param->type() != type)
                continue;
            tool->setParam(param);
            return *qobject_cast<P *>(param);
        }
        qFatal("no such parameter");
    }
    RyLegacyBendParam &takeBend() { return take<RyLegacyBendParam>(RyLegacyJointParam::Bend); }
    RyLegacyTwistParam &takeTwist() { return take<RyLegacyTwistParam>(RyLegacyJointParam::Twist); }
    RyLegacySmoothScale &takeSmooth() { return take<RyLegacySmoothScale>(RyLegacyJointParam::SmoothScale); }

    ParametricScene doll{false};

private:
    static void setSphere(const RyLegacyJointSphere &sphere, const RyVec3 &center, float size)
    {
        const float values[10] = {center.x, center.y, center.z, 20, -35, 50, size, 1.1f, 0.8f, 1.3f};
        for (size_t i = 0; i < 10; ++i)
            sphere.controls()[i]->setValue(values[i]);
    }
    static void setValues(RyLegacyJointParam &param)
    {
        const RyVec3 origin = param.getDriver()->getOrigin();
        param.setApplyMatrices(true);
        setSphere(*param.getDynamicSphere(), origin + RyVec3(9, 2, -1), 7.0f);
        setSphere(*param.getStaticSphere(), origin + RyVec3(11, 1, 1.5f), 11.0f);
        if (auto *bend = qobject_cast<RyLegacyBendParam *>(&param))
            bend->setAngles(1.9f, 0.6f, -0.4f, -2.2f);
        if (auto *twist = qobject_cast<RyLegacyTwistParam *>(&param)) {
            twist->setApplyBlend(true);
            twist->setStart(origin[twist->getAxis()] + 4.0f);
            twist->setEnd(origin[twist->getAxis()] + 22.5f);
        }
        if (auto *smooth = qobject_cast<RyLegacySmoothScale *>(&param)) {
            smooth->setApplyZones(true);
            smooth->setHiValid(true);
            smooth->setLoValid(true);
            const float values[4] = {5.0f, 12.0f, -3.5f, -9.0f};
            smooth->setHiStart(origin[smooth->getAxis()] + values[0]);
            smooth->setHiEnd(origin[smooth->getAxis()] + values[1]);
            smooth->setLoStart(origin[smooth->getAxis()] + values[2]);
            smooth->setLoEnd(origin[smooth->getAxis()] + values[3]);
        }
    }
};
