#include "pluginsource/RyJointTools/dialogs/RyJointEditorToolDrawingOptionsDlg.h"

#include "pluginsource/RyJointTools/dialogs/addLabeledRow.h"

#include "rycore/app/RyApp.h"
#include "rycore/ui/RyColorWgt.h"
#include "rycore/ui/RyIntSlider.h"

#include <QComboBox>
#include <QGridLayout>

namespace {

// Full opacity, and the density with a line for every degree.
constexpr int FullOpacity = 255;
constexpr int FullDensity = 360;

/// Truncated, both ways: what is shown need not give back what was there.
int toPercentage(int value, int full)
{
    return value * 100 / full;
}

int fromPercentage(const RyIntSlider *percentage, int full)
{
    return percentage->value() * full / 100;
}

} // namespace

RyJointEditorToolDrawingOptionsDlg::RyJointEditorToolDrawingOptionsDlg(RyJointEditorTool *tool)
    : RyBasicDialog(RyApp::getDialogParent()), m_tool(tool), m_before(tool ? tool->display() : RyJointToolDisplay()),
      m_grid(new QGridLayout)
{
    setObjectName(QStringLiteral("JointEditorDrawingOptionsDlg"));
    setWindowTitle(tr("Joint Editor Drawing Options"));
    setMinimumWidth(290);
    m_grid->setColumnStretch(1, 1);

    // The controls show the tool's values before anything listens to them.
    const RyJointToolDisplay &shown = m_before;
    m_boneStyle = addStyles(tr("Bone Style :"), "JointEditorBoneColorStyleLbl", "JointEditorBoneColorStyleCmb",
                            {tr("Solid Color"), tr("Axis Colored")}, shown.boneColoringStyle);
    m_selectedColor = addColor(tr("Selection Color :"), "JointEditorDrawingSelectedColorLbl",
                               "JointEditorDrawingSelectedColorWgt", shown.selectedColor);
    m_dynamicColor = addColor(tr("Dynamic Color :"), "JointEditorDrawingDynamicColorLbl",
                              "JointEditorDrawingDynamicColorWgt", shown.dynamicColor);
    m_staticColor = addColor(tr("Static Color :"), "JointEditorDrawingStaticColorLbl",
                             "JointEditorDrawingStaticColorWgt", shown.staticColor);
    m_handleStyle = addStyles(tr("Handle Style :"), "JointEditorDrawingHandleStyleLbl",
                              "JointEditorDrawingHandleStyleCmb", {tr("Wireframe"), tr("Solid")}, shown.handleDrawing);
    m_sphereStyle =
        addStyles(tr("Sphere Style :"), "JointEditorDrawingSphereStyleLbl", "JointEditorDrawingSphereStyleCmb",
                  {tr("Axis Only"), tr("Wireframe"), tr("Solid")}, shown.sphereDrawing);
    m_sphereOpacity = addSlider(tr("Sphere Opacity :"), "JointEditorDrawingSphereOpacityLbl",
                                "JointEditorDrawingSphereOpacitySldr", toPercentage(shown.sphereOpacity, FullOpacity));
    m_sphereDensity = addSlider(tr("Sphere Line Density :"), "JointEditorSphereLineDensityLbl",
                                "JointEditorSphereLineDensitySldr", toPercentage(shown.sphereLineDensity, FullDensity));
    m_weightStyle =
        addStyles(tr("Weight Map Style :"), "JointEditorWeightMapDrawStyleLbl", "JointEditorWeightMapDrawStyleCmb",
                  {tr("Points"), tr("Wireframe"), tr("Solid")}, shown.weightMapMode);
    m_weightOpacity = addSlider(tr("Weight Map Opacity :"), "JointEditorWeightMapOpacityLbl",
                                "JointEditorWeightMapOpacitySldr", toPercentage(shown.weightOpacity, FullOpacity));
    m_boundaryColor = addColor(tr("Boundary Color :"), "JointEditorBoundryColorLbl", "JointEditorBoundryColorWgt",
                               shown.boundaryColor);
    m_boundaryStyle = addStyles(tr("Boundary Style :"), "JointEditorMeshBoundryDrawStyleLbl",
                                "JointEditorMeshBoundrySrawStyleCmb", {tr("Points"), tr("Lines")}, shown.boundaryStyle);
    setContentLayout(m_grid);
}

void RyJointEditorToolDrawingOptionsDlg::addRow(const QString &label, const char *labelName, const char *name,
                                                QWidget *control)
{
    control->setObjectName(QLatin1String(name));
    addLabeledRow(m_grid, label, QLatin1String(labelName), control);
}

static QString spokenName(const QString &label)
{
    return QString(label).remove(QLatin1Char(':')).trimmed();
}

RyColorWgt *RyJointEditorToolDrawingOptionsDlg::addColor(const QString &label, const char *labelName, const char *name,
                                                         const QColor &color)
{
    auto *control = new RyColorWgt(this);
    control->setColor(color);
    control->setSpokenName(spokenName(label));
    connect(control, SIGNAL(colorChanged(QColor)), this, SLOT(updateTool()));
    addRow(label, labelName, name, control);
    return control;
}

QComboBox *RyJointEditorToolDrawingOptionsDlg::addStyles(const QString &label, const char *labelName, const char *name,
                                                         const QStringList &styles, int style)
{
    auto *control = new QComboBox(this);
    control->addItems(styles);
    control->setCurrentIndex(style);
    control->setAccessibleName(spokenName(label));
    connect(control, SIGNAL(activated(int)), this, SLOT(updateTool()));
    addRow(label, labelName, name, control);
    return control;
}

RyIntSlider *RyJointEditorToolDrawingOptionsDlg::addSlider(const QString &label, const char *labelName,
                                                           const char *name, int percentage)
{
    auto *control = new RyIntSlider(this);
    control->setValue(percentage);
    control->setSpokenName(spokenName(label));
    connect(control, SIGNAL(valueChanged(int)), this, SLOT(updateTool()));
    addRow(label, labelName, name, control);
    return control;
}

void RyJointEditorToolDrawingOptionsDlg::updateTool()
{
    RyJointToolDisplay display = m_before;
    display.selectedColor = m_selectedColor->getColor();
    display.dynamicColor = m_dynamicColor->getColor();
    display.staticColor = m_staticColor->getColor();
    display.boundaryColor = m_boundaryColor->getColor();
    display.boneColoringStyle = m_boneStyle->currentIndex();
    display.handleDrawing = m_handleStyle->currentIndex();
    display.sphereDrawing = m_sphereStyle->currentIndex();
    display.weightMapMode = m_weightStyle->currentIndex();
    display.boundaryStyle = m_boundaryStyle->currentIndex();
    display.sphereOpacity = fromPercentage(m_sphereOpacity, FullOpacity);
    display.sphereLineDensity = qMax(fromPercentage(m_sphereDensity, FullDensity), 1);
    display.weightOpacity = fromPercentage(m_weightOpacity, FullOpacity);
    writeToTool(display);
}

void RyJointEditorToolDrawingOptionsDlg::writeToTool(const RyJointToolDisplay &display)
{
    if (!m_tool)
        return;
    m_tool->setSelectedColor(display.selectedColor);
    m_tool->setDynamicColor(display.dynamicColor);
    m_tool->setStaticColor(display.staticColor);
    m_tool->setBoundaryColor(display.boundaryColor);
    m_tool->setBoneColoringStyle(display.boneColoringStyle);
    m_tool->setHandleDrawing(display.handleDrawing);
    m_tool->setSphereDrawing(display.sphereDrawing);
    m_tool->setWeightMapMode(display.weightMapMode);
    m_tool->setBoundaryStyle(display.boundaryStyle);
    m_tool->setSphereOpacity(display.sphereOpacity);
    m_tool->setSphereLineDensity(display.sphereLineDensity);
    m_tool->setWeightOpacity(display.weightOpacity);
}

void RyJointEditorToolDrawingOptionsDlg::accept()
{
    RyBasicDialog::accept();
    updateTool();
}

void RyJointEditorToolDrawingOptionsDlg::reject()
{
    RyBasicDialog::reject();
    writeToTool(m_before);
}
