#pragma once

#include "rycore/scene/RyNode.h"

#include <QFrame>
#include <QPointer>

class QComboBox;
class QGridLayout;
class QLabel;
class RyFloatPropertyWgt;
class RyJointEditorTool;
class RyJointParamCombo;
class RyJointParamPanel;
class RyLegacyJointParam;

/// The tool settings pane: the current node, what of it is edited, its rotation order, and the numbers of what is
/// edited: center point, end point and orientation, or one parameter of its joint. Made by the tool, which it does not
/// own.
class RyJointEditorToolFrame : public QFrame
{
    Q_OBJECT
public:
    RyJointEditorToolFrame(QWidget *parent, RyJointEditorTool *tool);

    QSize minimumSizeHint() const override;
    /// What the host offers to fold the pane away with.
    QWidget *getDividerBar() const { return m_dividerBar; }

private slots:
    void setParam(int selection);
    void updateNode(RyNode *node);
    void updateParam(RyLegacyJointParam *param);
    void setRotation(int selection);

private:
    QWidget *makeTop();
    void addRow(QGridLayout *grid, const QString &label, const char *labelName, QWidget *field);
    QWidget *makeNumbers();
    void updateHeader();

    RyJointEditorTool *m_tool;
    QPointer<RyNode> m_node;
    QLabel *m_nodeName = nullptr;
    RyJointParamCombo *m_params = nullptr;
    QComboBox *m_rotationOrder = nullptr;
    QWidget *m_points = nullptr; // what shows while no parameter is edited
    RyJointParamPanel *m_paramPanel = nullptr;
    RyFloatPropertyWgt *m_numbers[9] = {};
    QWidget *m_dividerBar;
};
