#pragma once

#include "rycore/parametric/RyBendAngles.h"

class QObject;
class RyFloatProperty;
class RyLegacyBendParam;
class RyLegacyJointParam;
class RyLegacyJointSphere;
class RyViewTool;
struct RyJointState;
struct RyJointToolDisplay;
struct RyToolOptions;

/// What follows when values of the current parameter change by whatever hand: angles push their neighbours and go to
/// the partner, and a sphere turns about one axis at a time where axes are restricted. What puts values in place as
/// they are is not answered: undo and redo, what runs under a lock, and edits of the whole parameter.
class RyParamFollowUp
{
public:
    RyParamFollowUp(RyViewTool &tool, RyJointState &joint, const RyToolOptions &options,
                    const RyJointToolDisplay &display)
        : m_tool(tool), m_joint(joint), m_options(options), m_display(display)
    {}

    /// Begins and ends to follow the values of the current parameter.
    void connectValues();
    void disconnectValues();

    /// Sets an angle (0 to 3 for A to D, radians) of the current bend parameter and of its partner, as an edit that
    /// began at `start` (degrees). Neighbours go along as the options say. Nothing without a bend parameter.
    void setAngle(int index, float radians, const RyBendAngles::Values &start);
    /// The same from where the angles are.
    void setAngle(int index, float radians);

    /// Controls of the current parameter have changed: an angle, a turn of the dynamic or of the static sphere.
    void angleChanged(const QObject *controller);
    void dynamicTurnChanged(const QObject *control);
    void staticTurnChanged(const QObject *control);

private:
    using SphereOf = RyLegacyJointSphere *(*)(const RyLegacyJointParam &param);
    RyLegacyBendParam *bend() const;
    bool isEditOfOneValue(const RyLegacyJointParam &param) const;
    RyBendAngles::Values startOf(int index);
    void cacheAngles(const RyLegacyBendParam &bend);
    void turnChanged(SphereOf sphereOf, const QObject *control);

    /// Values that an edit began with, such as a slider that is dragged: within one undo hold, neighbours that were
    /// pushed come back when the angle does.
    struct Edit
    {
        int index = -1; // of the angle
        int step = 0;   // of the undo stack
        RyBendAngles::Values start{};
    };

    RyViewTool &m_tool;
    RyJointState &m_joint;
    const RyToolOptions &m_options;
    const RyJointToolDisplay &m_display;
    RyBendAngles::Values m_angles{}; // of the current bend parameter as they were last seen, in degrees
    Edit m_edit;
    bool m_isWriting = false;
};
