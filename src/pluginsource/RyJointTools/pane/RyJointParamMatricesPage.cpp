#include "pluginsource/RyJointTools/pane/RyJointParamMatricesPage.h"

#include "pluginsource/RyJointTools/tool/RyJointEditorTool.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/figure/RyLegacySpheres.h"
#include "rycore/scene/RyBone.h"
#include "rycore/ui/RyFloatPropertyWgt.h"
#include "rycore/ui/RyStandardMetrics.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>

struct RyJointParamMatricesPage::GroupRow
{
    const char *title;
    const char *name;
    const char *spoken; // before the labels
    const char *suffix;
    float step;
    size_t firstField, lastField;
};

/// In the order of the controls of a sphere.
struct RyJointParamMatricesPage::FieldRow
{
    const char *label;
    const char *name;
};

const RyJointParamMatricesPage::GroupRow RyJointParamMatricesPage::Groups[3] = {
    {QT_TRANSLATE_NOOP("RyJointParamMatricesPage", "Position :"), "JointParamMatricesMatrixPositionGrpBox",
     QT_TRANSLATE_NOOP("RyJointParamMatricesPage", "Position"), " cm", 1.0f, 0, 2},
    {QT_TRANSLATE_NOOP("RyJointParamMatricesPage", "Rotation :"), "JointParamMatricesMatrixRotationGrpBox",
     QT_TRANSLATE_NOOP("RyJointParamMatricesPage", "Rotation"), "\u00b0", 1.0f, 3, 5},
    {QT_TRANSLATE_NOOP("RyJointParamMatricesPage", "Scale :"), "JointParamMatricesMatrixScaleGrpBox",
     QT_TRANSLATE_NOOP("RyJointParamMatricesPage", "Scale"), "", 0.1f, 6, 9},
};

const RyJointParamMatricesPage::FieldRow RyJointParamMatricesPage::Fields[10] = {
    {QT_TRANSLATE_NOOP("RyJointParamMatricesPage", "X Axis"), "JointParamMatricesMatrixPositionX"},
    {QT_TRANSLATE_NOOP("RyJointParamMatricesPage", "Y Axis"), "JointParamMatricesMatrixPositionY"},
    {QT_TRANSLATE_NOOP("RyJointParamMatricesPage", "Z Axis"), "JointParamMatricesMatrixPositionZ"},
    {QT_TRANSLATE_NOOP("RyJointParamMatricesPage", "X Axis"), "JointParamMatricesMatrixRotationX"},
    {QT_TRANSLATE_NOOP("RyJointParamMatricesPage", "Y Axis"), "JointParamMatricesMatrixRotationY"},
    {QT_TRANSLATE_NOOP("RyJointParamMatricesPage", "Z Axis"), "JointParamMatricesMatrixRotationZ"},
    {QT_TRANSLATE_NOOP("RyJointParamMatricesPage", "General"), "JointParamMatricesMatrixScaleGen"},
    {QT_TRANSLATE_NOOP("RyJointParamMatricesPage", "X Axis"), "JointParamMatricesMatrixScaleX"},
    {QT_TRANSLATE_NOOP("RyJointParamMatricesPage", "Y Axis"), "JointParamMatricesMatrixScaleY"},
    {QT_TRANSLATE_NOOP("RyJointParamMatricesPage", "Z Axis"), "JointParamMatricesMatrixScaleZ"},
};

RyJointParamMatricesPage::RyJointParamMatricesPage(RyJointEditorTool *tool, QWidget *parent)
    : RyJointParamPage(tool, parent)
{
    setObjectName(QStringLiteral("JointEditorParamMatricesPage"));
    QVBoxLayout *column = makeScrollingColumn(this, QStringLiteral("JointParamMatricesScrollArea"),
                                              QStringLiteral("JointParamMatricesScrollContentsWgt"));
    m_enable = new QGroupBox(tr("Enable Sphere Matrices"), column->parentWidget());
    m_enable->setObjectName(QStringLiteral("JointParamMatricesEnableSphereMatricesGrpBox"));
    m_enable->setCheckable(true);
    auto *inside = new QVBoxLayout(m_enable);
    inside->setContentsMargins(0, 0, 0, 0);
    inside->addWidget(makeSpheres(m_enable));
    column->addWidget(m_enable);
    column->addStretch(1);
    alignLabels();
    updateParam(tool->currentParam());
    connect(m_enable, SIGNAL(toggled(bool)), this, SLOT(applyMatrices(bool)));
    connect(tool, SIGNAL(paramChanged(RyLegacyJointParam *)), this, SLOT(updateParam(RyLegacyJointParam *)));
}

QWidget *RyJointParamMatricesPage::makeSpheres(QWidget *parent)
{
    auto *box = new QGroupBox(parent);
    box->setObjectName(QStringLiteral("JointParamMatricesMatricesGrpBox"));
    box->setFlat(true);
    auto *rows = new QVBoxLayout(box);
    const int margin = RyStandardMetrics::Margin;
    rows->setContentsMargins(margin, margin, margin, margin);
    rows->setSpacing(margin);

    auto *reset = new QPushButton(tr("Reset Matrices"), box);
    reset->setObjectName(QStringLiteral("JointParamMatricesResetBtn"));
    reset->setToolTip(tr("Puts both spheres around the bone."));
    connect(reset, SIGNAL(clicked()), this, SLOT(makeMatricesDefault()));
    rows->addWidget(reset);

    auto *label = new QLabel(tr("Active Sphere :"), box);
    label->setObjectName(QStringLiteral("JointParamMatricesActiveSphereLbl"));
    m_sphere = new QComboBox(box);
    m_sphere->setObjectName(QStringLiteral("JointParamMatricesActiveSphereCmb"));
    m_sphere->setAccessibleName(tr("Active Sphere"));
    m_sphere->addItems(
        {tr("Static"), tr("Dynamic"), tr("Both (From Static Values)"), tr("Both (From Dynamic Values)")});
    m_sphere->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_sphere->setCurrentIndex(m_activeSphere);
    label->setBuddy(m_sphere);
    connect(m_sphere, SIGNAL(activated(int)), this, SLOT(setActiveSphere(int)));
    auto *line = new QHBoxLayout;
    line->addWidget(label);
    line->addWidget(m_sphere, 1);
    rows->addLayout(line);

    for (const GroupRow &row : Groups)
        rows->addWidget(makeGroup(row, box));
    return box;
}

QGroupBox *RyJointParamMatricesPage::makeGroup(const GroupRow &row, QWidget *parent)
{
    auto *box = new QGroupBox(tr(row.title), parent);
    box->setObjectName(QLatin1String(row.name));
    auto *rows = new QVBoxLayout(box);
    rows->setSpacing(RyStandardMetrics::Spacing);
    if (row.firstField == XRotation) {
        auto *restrict = new QCheckBox(tr("Restrict Axes (Compatibility Mode)"), box);
        restrict->setObjectName(QStringLiteral("JointParamMatricesRestrictRotationsCbx"));
        restrict->setToolTip(tr("A sphere turns about X or about Y, not about both."));
        // Its end may be cut rather than that all scrolls sideways.
        restrict->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
        restrict->setChecked(tool()->display().restrictRotationAxes);
        connect(restrict, SIGNAL(toggled(bool)), tool(), SLOT(setRestrictRotationAxes(bool)));
        connect(restrict, SIGNAL(toggled(bool)), this, SLOT(restrictRotationAxesToggled(bool)));
        connect(tool(), &RyViewTool::optionsChanged, this, [this, restrict] { showRestriction(*restrict); });
        rows->addWidget(restrict);
    }
    for (size_t i = row.firstField; i <= row.lastField; ++i)
        m_fields[i] = addField(rows, {tr(Fields[i].label), QLatin1String(Fields[i].name), tr(row.spoken),
                                      QString::fromUtf8(row.suffix), row.step});
    return box;
}

void RyJointParamMatricesPage::updateParam(RyLegacyJointParam *param)
{
    follow(param);
    refresh();
}

void RyJointParamMatricesPage::refresh()
{
    clearFields();
    if (!param() || m_isRefreshHeld)
        return;
    const RyLegacyJointSphere *dynamic = param()->getDynamicSphere();
    const RyLegacyJointSphere *fixed = param()->getStaticSphere();
    const bool isDynamicFirst = m_activeSphere == Dynamic || m_activeSphere == BothFromDynamic;
    const RyLegacyJointSphere *primary = isDynamicFirst ? dynamic : fixed;
    const RyLegacyJointSphere *secondary = isDynamicFirst ? fixed : dynamic;
    if (!primary)
        return;
    showFlags();
    addSphere(*primary);
    if (secondary && (m_activeSphere == BothFromStatic || m_activeSphere == BothFromDynamic))
        addSphere(*secondary);
    followRotations();
}

void RyJointParamMatricesPage::addSphere(const RyLegacyJointSphere &sphere)
{
    for (size_t i = 0; i < m_fields.size(); ++i)
        addValue(m_fields[i], sphere.controls()[i]);
}

void RyJointParamMatricesPage::followRotations()
{
    for (const QMetaObject::Connection &rotation : m_rotations)
        disconnect(rotation);
    m_rotations.clear();
    for (const size_t field : {XRotation, YRotation})
        m_rotations.push_back(connect(m_fields[field]->getFirstProperty(), SIGNAL(currentValueChanged()), this,
                                      SLOT(validateRotationAxisRestriction())));
}

void RyJointParamMatricesPage::showFlags()
{
    const QSignalBlocker blocker(m_enable);
    m_enable->setChecked(param() && param()->applyMatrices());
}

void RyJointParamMatricesPage::setActiveSphere(int selection)
{
    if (selection >= Static && selection <= BothFromDynamic)
        m_activeSphere = selection;
    m_sphere->setCurrentIndex(m_activeSphere);
    refresh();
}

void RyJointParamMatricesPage::applyMatrices(bool onOff)
{
    apply(RyLegacyJointParam::ApplyMatrices, onOff, tr("Apply Matrices"));
}

void RyJointParamMatricesPage::makeMatricesDefault()
{
    const auto *bone = qobject_cast<const RyBone *>(tool()->currentNode());
    if (!bone || !param())
        return;
    RyUndoStackHold hold;
    RyLegacySpheres::resetBoth(*param(), *bone);
    hold.accept(tr("Set Matrices to Default"));
}

void RyJointParamMatricesPage::restrictRotationAxesToggled(bool onOff)
{
    if (onOff)
        return;
    for (const size_t field : {XRotation, YRotation})
        m_fields[field]->setEnabled(m_fields[field]->getFirstProperty());
}

void RyJointParamMatricesPage::showRestriction(QCheckBox &box)
{
    const bool on = tool()->display().restrictRotationAxes;
    if (box.isChecked() == on)
        return;
    const QSignalBlocker blocker(box);
    box.setChecked(on);
    restrictRotationAxesToggled(on);
}

void RyJointParamMatricesPage::validateRotationAxisRestriction()
{
    if (!tool()->display().restrictRotationAxes)
        return;
    for (const auto &[changed, other] : {std::pair(XRotation, YRotation), std::pair(YRotation, XRotation)}) {
        const RyFloatProperty *property = m_fields[changed]->getFirstProperty();
        if (property && property == sender())
            m_fields[other]->setEnabled(property->getValue() == 0.0f);
    }
}
