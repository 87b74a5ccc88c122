#include "pluginsource/RyJointTools/pane/RyJointParamGeneralPage.h"

#include "pluginsource/RyJointTools/tool/RyJointEditorTool.h"

#include "rycore/parametric/RyLegacySmoothScale.h"
#include "rycore/ui/RyFloatPropertyWgt.h"
#include "rycore/ui/RyStandardMetrics.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QSignalBlocker>
#include <QVBoxLayout>

using Param = RyLegacyJointParam;

struct RyJointParamGeneralPage::GroupRow
{
    const char *title;
    const char *name;
    const char *slot;
    Param::Type kind;
    Param::Flag flag;
    const char *caption;
    const char *spoken; // before the labels, or empty
    const char *suffix;
    float step;
    const char *tip;
    size_t firstField, lastField;
};

struct RyJointParamGeneralPage::FieldRow
{
    const char *label;
    const char *name;
    size_t controller; // among those of its kind
};

const RyJointParamGeneralPage::GroupRow RyJointParamGeneralPage::Groups[GroupCount] = {
    {QT_TRANSLATE_NOOP("RyJointParamGeneralPage", "Enable Angles :"), "JointParamGeneralEnableAnglesGrpBox",
     SLOT(applyAngles(bool)), Param::Bend, Param::ApplyAngles,
     QT_TRANSLATE_NOOP("RyJointParamGeneralPage", "Apply Angles"), "", "\u00b0", 1.0f,
     QT_TRANSLATE_NOOP(
         "RyJointParamGeneralPage",
         "Between the dynamic rays B and C the surface follows, beyond the static rays A and D it stays."),
     0, 3},
    {QT_TRANSLATE_NOOP("RyJointParamGeneralPage", "Enable Bulges :"), "JointParamGeneralEnableBulgesGrpBox",
     SLOT(applyBulges(bool)), Param::Bend, Param::ApplyBulges,
     QT_TRANSLATE_NOOP("RyJointParamGeneralPage", "Apply Bulges"),
     QT_TRANSLATE_NOOP("RyJointParamGeneralPage", "Bulge"), "", 0.05f,
     QT_TRANSLATE_NOOP("RyJointParamGeneralPage",
                       "How far the surface swells at a quarter turn, as a share of its distance from the bone."),
     4, 7},
    {QT_TRANSLATE_NOOP("RyJointParamGeneralPage", "Enable Twist :"), "JointParamGeneralEnableTwistGrpBox",
     SLOT(applyTwist(bool)), Param::Twist, Param::ApplyBlend,
     QT_TRANSLATE_NOOP("RyJointParamGeneralPage", "Apply Twist"), QT_TRANSLATE_NOOP("RyJointParamGeneralPage", "Twist"),
     " cm", 1.0f,
     QT_TRANSLATE_NOOP("RyJointParamGeneralPage",
                       "Before the start the surface stays, behind the end it follows the twist."),
     8, 9},
    {QT_TRANSLATE_NOOP("RyJointParamGeneralPage", "Enable Smooth Zone :"), "JointParamGeneralEnableScaleGrpBox",
     SLOT(applyScale(bool)), Param::SmoothScale, Param::ApplyZones,
     QT_TRANSLATE_NOOP("RyJointParamGeneralPage", "Apply Scale Zones"),
     QT_TRANSLATE_NOOP("RyJointParamGeneralPage", "Zone"), " cm", 1.0f,
     QT_TRANSLATE_NOOP("RyJointParamGeneralPage", "From its start to its end a zone fades the scale of the bone out."),
     10, 13},
};

const RyJointParamGeneralPage::FieldRow RyJointParamGeneralPage::Fields[] = {
    {QT_TRANSLATE_NOOP("RyJointParamGeneralPage", "Static A"), "JointParamGeneralStaticA", 0},
    {QT_TRANSLATE_NOOP("RyJointParamGeneralPage", "Dynamic B"), "JointParamGeneralDynamicB", 1},
    {QT_TRANSLATE_NOOP("RyJointParamGeneralPage", "Dynamic C"), "JointParamGeneralDynamicC", 2},
    {QT_TRANSLATE_NOOP("RyJointParamGeneralPage", "Static D"), "JointParamGeneralStaticD", 3},
    {QT_TRANSLATE_NOOP("RyJointParamGeneralPage", "Positive A/B"), "JointParamGeneralPosLeftBulge", 4},
    {QT_TRANSLATE_NOOP("RyJointParamGeneralPage", "Positive D/C"), "JointParamGeneralPosRightBulge", 5},
    {QT_TRANSLATE_NOOP("RyJointParamGeneralPage", "Negative A/B"), "JointParamGeneralNegLeftBulge", 6},
    {QT_TRANSLATE_NOOP("RyJointParamGeneralPage", "Negative D/C"), "JointParamGeneralNegRightBulge", 7},
    {QT_TRANSLATE_NOOP("RyJointParamGeneralPage", "Start"), "JointParamGeneralTwistStart", 0},
    {QT_TRANSLATE_NOOP("RyJointParamGeneralPage", "End"), "JointParamGeneralTwistEnd", 1},
    {QT_TRANSLATE_NOOP("RyJointParamGeneralPage", "Low End"), "JointParamGeneralSmoothLoEnd", 3},
    {QT_TRANSLATE_NOOP("RyJointParamGeneralPage", "Low Start"), "JointParamGeneralSmoothLoStart", 2},
    {QT_TRANSLATE_NOOP("RyJointParamGeneralPage", "High Start"), "JointParamGeneralSmoothHiStart", 0},
    {QT_TRANSLATE_NOOP("RyJointParamGeneralPage", "High End"), "JointParamGeneralSmoothHiEnd", 1},
};

static constexpr size_t lastHighController = 1; // of a smooth-scale

RyJointParamGeneralPage::RyJointParamGeneralPage(RyJointEditorTool *tool, QWidget *parent)
    : RyJointParamPage(tool, parent)
{
    setObjectName(QStringLiteral("JointEditorParamGeneralPage"));
    QVBoxLayout *column = makeScrollingColumn(this, QStringLiteral("JointParamGeneralScrollArea"),
                                              QStringLiteral("JointParamGeneralScrollContentsWgt"));
    for (int group = 0; group < GroupCount; ++group) {
        m_groups[size_t(group)] = makeGroup(group, column->parentWidget());
        column->addWidget(m_groups[size_t(group)]);
    }
    column->addStretch(1);
    alignLabels();
    updateParam(tool->currentParam());
    connect(tool, SIGNAL(paramChanged(RyLegacyJointParam *)), this, SLOT(updateParam(RyLegacyJointParam *)));
}

QGroupBox *RyJointParamGeneralPage::makeGroup(int group, QWidget *parent)
{
    const GroupRow &row = Groups[group];
    auto *box = new QGroupBox(tr(row.title), parent);
    box->setObjectName(QLatin1String(row.name));
    box->setCheckable(true);
    auto *rows = new QVBoxLayout(box);
    rows->setSpacing(RyStandardMetrics::Spacing);
    if (group == Angles) {
        auto *push = new QCheckBox(tr("Push Neighboring Angles"), box);
        push->setObjectName(QStringLiteral("JointParamGeneralPushNeighborCbx"));
        push->setToolTip(tr("A ray that would pass its neighbor takes it along."));
        push->setChecked(tool()->pushNeighborAngles());
        connect(push, SIGNAL(toggled(bool)), tool(), SLOT(setPushNeighborAngles(bool)));
        connect(tool(), &RyViewTool::optionsChanged, this, [this, push] {
            const QSignalBlocker blocker(push);
            push->setChecked(tool()->pushNeighborAngles());
        });
        rows->addWidget(push);
    }
    const QString spoken = *row.spoken ? tr(row.spoken) : QString();
    for (size_t i = row.firstField; i <= row.lastField; ++i) {
        m_fields[i] = addField(rows, {tr(Fields[i].label), QLatin1String(Fields[i].name), spoken,
                                      QString::fromUtf8(row.suffix), row.step});
        m_fields[i]->setToolTip(tr(row.tip));
    }
    connect(box, SIGNAL(toggled(bool)), this, row.slot);
    return box;
}

bool RyJointParamGeneralPage::isOf(int group) const
{
    return param() && param()->type() == Groups[group].kind;
}

void RyJointParamGeneralPage::updateParam(RyLegacyJointParam *param)
{
    follow(param);
    refresh();
}

void RyJointParamGeneralPage::refresh()
{
    clearFields();
    for (int group = 0; group < GroupCount; ++group) {
        m_groups[size_t(group)]->setVisible(isOf(group));
        if (!isOf(group))
            continue;
        for (size_t i = Groups[group].firstField; i <= Groups[group].lastField; ++i)
            addValue(m_fields[i], param()->controllers()[Fields[i].controller]);
        showGroup(group);
    }
}

void RyJointParamGeneralPage::showFlags()
{
    for (int group = 0; group < GroupCount; ++group) {
        if (isOf(group))
            showGroup(group);
    }
}

void RyJointParamGeneralPage::showGroup(int group)
{
    const bool on = param()->flags() & Groups[group].flag;
    const QSignalBlocker blocker(m_groups[size_t(group)]);
    m_groups[size_t(group)]->setChecked(on);
    enableFields(group, on);
}

void RyJointParamGeneralPage::enableFields(int group, bool on)
{
    const auto *smooth = qobject_cast<const RyLegacySmoothScale *>(param());
    for (size_t i = Groups[group].firstField; i <= Groups[group].lastField; ++i) {
        const bool isThere =
            !smooth || (Fields[i].controller <= lastHighController ? smooth->hiValid() : smooth->loValid());
        m_fields[i]->setEnabled(on && isThere);
    }
}

void RyJointParamGeneralPage::applyGroup(int group, bool on)
{
    if (!isOf(group))
        return;
    apply(Groups[group].flag, on, tr(Groups[group].caption));
    enableFields(group, on);
}

void RyJointParamGeneralPage::applyAngles(bool onOff)
{
    applyGroup(Angles, onOff);
}

void RyJointParamGeneralPage::applyBulges(bool onOff)
{
    applyGroup(Bulges, onOff);
}

void RyJointParamGeneralPage::applyTwist(bool onOff)
{
    applyGroup(Twist, onOff);
}

void RyJointParamGeneralPage::applyScale(bool onOff)
{
    applyGroup(Scale, onOff);
}
