#pragma once

#include "rycore/parametric/RyBendAngles.h"

class QObject;
class RyJointEditorTool;
class RyLegacyBendParam;
class RyLegacyJointParam;
class RyNode;
struct RyJointState;
struct RyToolOptions;

/// Which parameter of the current node's joint the tool edits, with its partners on the other side of the joint, and
/// what follows when the values change by whatever hand.
class RyToolParam
{
public:
    RyToolParam(RyJointEditorTool &tool, RyJointState &joint, const RyToolOptions &options);

    /// A parameter that is not one of the current node's joint selects none. Announces it when it is another one.
    void set(RyLegacyJointParam *param);
    /// The one of the current node that is most like the one that was chosen last; null for a node whose figure has a
    /// skin, for one without a joint, and while none has been chosen.
    RyLegacyJointParam *choose() const;

    /// Begins and ends to follow the values of the current parameter.
    void connectValues();
    void disconnectValues();

    /// Sets an angle (0 to 3 for A to D, radians) of the current bend parameter and of its partner, as an edit that
    /// began at `start` (degrees). Neighbours go along as the options say. Nothing without a bend parameter.
    void setAngle(int index, float radians, const RyBendAngles::Values &start);
    /// The same from where the angles are.
    void setAngle(int index, float radians);
    /// An angle controller of the current parameter has changed: neighbours follow it.
    void angleChanged(const QObject *controller);

private:
    bool isOwn(const RyLegacyJointParam *param) const;
    void clear();
    void take(RyLegacyJointParam &param);
    RyLegacyJointParam *findPartner(const RyLegacyJointParam &param) const;
    RyLegacyJointParam *findBendPartner(const RyLegacyJointParam &param) const;
    RyLegacyBendParam *bend() const;
    void cacheAngles(const RyLegacyBendParam &bend);

    RyJointEditorTool &m_tool;
    RyJointState &m_joint;
    const RyToolOptions &m_options;
    bool m_isSettingAngle = false;
};
