#pragma once

#include "pluginsource/RyJointTools/tool/drags/RyHandleDrag.h"
#include "pluginsource/RyJointTools/tool/drags/RyRecordedValues.h"

#include <vector>

struct RyDragContext;

/// Changes values of a joint parameter and of its partner, the parameter of the same kind on the other side of the
/// joint, which need not be there. Where the mouse is back at the place of the press, both have all their values of
/// then.
class RyParamDrag : public RyHandleDrag
{
public:
    /// The context has a parameter.
    explicit RyParamDrag(const RyDragContext &context);
    bool pointsAtEye() const override { return m_pointsAtEye; }

protected:
    void apply(const Options &options) final;
    /// For a way other than that of the press; the parameter is there.
    virtual void change(const Options &options) = 0;
    virtual void changeBack();

    RyLegacyJointParam *param() const { return m_param; }
    RyLegacyJointParam *partner() const { return m_partner; }
    /// Both, as far as they are there.
    std::vector<RyLegacyJointParam *> sides() const;
    /// Asked at the press, as rays that leave the axis later would meet it at the eye. Nothing is changed then.
    void setPointsAtEye(bool pointsAtEye) { m_pointsAtEye = pointsAtEye; }
    /// Whether a way is too short to have a direction.
    static bool isNowhere(const RyVec3 &way) { return way.length() < 1e-4f; }

private:
    QPointer<RyLegacyJointParam> m_param;
    QPointer<RyLegacyJointParam> m_partner;
    RyRecordedValues m_recorded;
    RyRecordedValues m_recordedPartner;
    bool m_pointsAtEye = false;
};
