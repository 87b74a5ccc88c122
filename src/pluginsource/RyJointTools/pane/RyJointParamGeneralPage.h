#pragma once

#include "pluginsource/RyJointTools/pane/RyJointParamPage.h"

#include <array>

class QGroupBox;

/// What a joint parameter says beside its spheres: rays and bulges of a bend, the zone of a twist, those of a
/// smooth-scale; each with a switch.
class RyJointParamGeneralPage : public RyJointParamPage
{
    Q_OBJECT
public:
    RyJointParamGeneralPage(RyJointEditorTool *tool, QWidget *parent);

private slots:
    void updateParam(RyLegacyJointParam *param);
    void refresh();
    void applyAngles(bool onOff);
    void applyBulges(bool onOff);
    void applyTwist(bool onOff);
    void applyScale(bool onOff);

private:
    enum Group { Angles, Bulges, Twist, Scale, GroupCount };
    struct GroupRow;
    struct FieldRow;
    static const GroupRow Groups[GroupCount];
    static const FieldRow Fields[];

    QGroupBox *makeGroup(int group, QWidget *parent);
    bool isOf(int group) const;
    void applyGroup(int group, bool on);
    void showGroup(int group);
    void enableFields(int group, bool on);
    void showParam() override { refresh(); }
    void showFlags() override;

    std::array<QGroupBox *, GroupCount> m_groups{};
    std::array<RyFloatPropertyWgt *, 14> m_fields{};
};
