#pragma once

#include "RyPaneTruth.h"
#include "RyStepStates.h"
#include "support/RyRandom.h"

#include "pane/RyPaneScene.h"

#include "rycore/parametric/RyLegacyBendParam.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <algorithm>
#include <functional>
#include <set>

/// A figure, a tool, and what every state of the history looks like. Fixture and random numbers for edits.
class RyParamSession
{
public:
    RyBone *bone()
    {
        const std::vector<RyBone *> bones = scene.doll.figure->getAllBones();
        return bones.empty() ? nullptr : bones[size_t(random.integer(0, int(bones.size()) - 1))];
    }
    RyLegacyJointParam *param(const RyLegacyJoint *joint)
    {
        const int last = joint ? int(joint->params().size()) - 1 : -1;
        return last < 0 ? nullptr : joint->params()[size_t(random.integer(0, last))];
    }
    RyLegacyJoint *joint() { return RyLegacyJoint::findJoint(bone()); }
    /// By a step that was done again.
    bool isFigureAway() const { return !scene.doll.figure->getScene() || !scene.doll.binding->getObject(); }
    /// The tool's parameter and the one whose values go with it.
    std::vector<RyLegacyJointParam *> edited() const
    {
        RyLegacyJointParam *current = scene.tool->currentParam();
        if (!current)
            return {};
        RyLegacyJointParam *partner = scene.tool->editedPartnerParam();
        return partner ? std::vector<RyLegacyJointParam *>{current, partner}
                       : std::vector<RyLegacyJointParam *>{current};
    }
    /// Writes a control of all these parameters as a field of the pane does: as one step; either of two comes first.
    void type(std::vector<RyLegacyJointParam *> params,
              const std::function<RyFloatProperty *(const RyLegacyJointParam &)> &control, float value)
    {
        if (random.chance(0.5))
            std::reverse(params.begin(), params.end());
        step([&] {
            for (const RyLegacyJointParam *param : params) {
                if (RyFloatProperty *property = control(*param))
                    property->adjustValue(value);
            }
        });
    }
    void step(const std::function<void()> &edit)
    {
        RyUndoStackHold hold;
        edit();
        hold.accept(QStringLiteral("Edit"));
    }

    /// Says what is wrong afterwards.
    QString undo() { return m_states.undo() + wrongTool(); }
    QString redo() { return m_states.redo() + wrongTool(); }
    /// Keeps the state of a step that was made; empty when the history is as it must be.
    QString account() { return m_states.account(); }
    /// What the tool points at and what the pane shows.
    QString wrongTool() const
    {
        const QString pointer = wrongPointer();
        return pointer.isEmpty() ? RyPaneTruth(scene).difference() : pointer;
    }
    /// What the tool points at, looked for without it.
    QString wrongPointer() const
    {
        const RyJointEditorTool &tool = *scene.tool;
        const RyNode *node = tool.currentNode();
        const RyLegacyJointParam *param = tool.currentParam();
        if (node != ryScene()->getPrimarySelection())
            return QStringLiteral("another node is selected");
        if (node && tool.currentNodeParent() != node->getNodeParent())
            return QStringLiteral("the parent is another one");
        if (!param) {
            return tool.partnerParam() || tool.bendPartnerParam() ? QStringLiteral("partners of nothing")
                                                                  : wrongAngles(nullptr);
        }
        const RyLegacyJoint *joint = RyLegacyJoint::findJoint(node);
        if (!joint || param->getJoint() != joint)
            return QStringLiteral("the parameter is none of the node's");
        if (param->editLevel() != 0)
            return QStringLiteral("an edit is open");
        if (tool.partnerParam() !=
            find(RyLegacyJoint::findJoint(node->getNodeParent()), [&](const RyLegacyJointParam &other) {
                return other.getDriver() == node && other.getAxis() == param->getAxis();
            }))
            return QStringLiteral("another partner");
        const RyLegacyJoint *drivers =
            param->type() == RyLegacyJointParam::SmoothScale ? RyLegacyJoint::findJoint(param->getDriver()) : nullptr;
        if (tool.bendPartnerParam() != find(drivers, [&](const RyLegacyJointParam &other) {
                return other.getDriver() == node && other.type() == RyLegacyJointParam::SmoothScale;
            }))
            return QStringLiteral("another bend partner");
        return wrongAngles(dynamic_cast<const RyLegacyBendParam *>(param));
    }

    RyPaneScene scene;
    RyRandom random;
    std::set<int> draggedHandles; // ids of those that made a step

private:
    static const RyLegacyJointParam *find(const RyLegacyJoint *joint,
                                          const std::function<bool(const RyLegacyJointParam &)> &fits)
    {
        for (const RyLegacyJointParam *param : joint ? joint->params() : std::vector<RyLegacyJointParam *>()) {
            if (fits(*param))
                return param;
        }
        return nullptr;
    }
    QString wrongAngles(const RyLegacyBendParam *bend) const
    {
        const RyJointEditorTool &tool = *scene.tool;
        const bool same =
            bend ? tool.cachedAngleA() == bend->getStaticA() && tool.cachedAngleB() == bend->getDynamicB() &&
                       tool.cachedAngleC() == bend->getDynamicC() && tool.cachedAngleD() == bend->getStaticD()
                 : tool.cachedAngleA() == 0.0f && tool.cachedAngleD() == 0.0f;
        return same ? QString() : QStringLiteral("other angles are cached");
    }

    RyStepStates m_states;
};
