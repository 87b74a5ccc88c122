#pragma once

#include "pluginsource/RyJointTools/tool/RyJointEditorTool.h"

#include "rycore/ui/RyBasicDialog.h"

class QComboBox;
class QGridLayout;
class RyColorWgt;
class RyIntSlider;

/// Colours, styles, opacities and line density of the joint editor tool. Every change shows in the viewport at once;
/// Cancel puts back what was there when the dialog was made.
class RyJointEditorToolDrawingOptionsDlg : public RyBasicDialog
{
    Q_OBJECT
public:
    /// The tool may go while the dialog is open.
    explicit RyJointEditorToolDrawingOptionsDlg(RyJointEditorTool *tool);

    void accept() override;
    void reject() override;

private slots:
    /// Writes what the controls show to the tool.
    void updateTool();

private:
    RyColorWgt *addColor(const QString &label, const char *labelName, const char *name, const QColor &color);
    QComboBox *addStyles(const QString &label, const char *labelName, const char *name, const QStringList &styles,
                         int style);
    RyIntSlider *addSlider(const QString &label, const char *labelName, const char *name, int percentage);
    void addRow(const QString &label, const char *labelName, const char *name, QWidget *control);
    void writeToTool(const RyJointToolDisplay &display);

    QPointer<RyJointEditorTool> m_tool;
    RyJointToolDisplay m_before;
    QGridLayout *m_grid;
    QComboBox *m_boneStyle;
    RyColorWgt *m_selectedColor;
    RyColorWgt *m_dynamicColor;
    RyColorWgt *m_staticColor;
    QComboBox *m_handleStyle;
    QComboBox *m_sphereStyle;
    RyIntSlider *m_sphereOpacity;
    RyIntSlider *m_sphereDensity;
    QComboBox *m_weightStyle;
    RyIntSlider *m_weightOpacity;
    RyColorWgt *m_boundaryColor;
    QComboBox *m_boundaryStyle;
};
