#pragma once

#include "rycore/scene/RyNode.h"

#include <QFrame>
#include <QPointer>

class QComboBox;
class QGridLayout;
class RyCenterEndPanel;
class RyDynamicDividerWgt;
class RyJointEditorTool;
class RyJointParamCombo;
class RyJointParamPanel;
class RyLegacyJointParam;

/// The tool settings pane: the node, the group that selects it, what of it is edited and its rotation order; below them
/// its points or one parameter of its joint; behind a divider what the tool draws. Made by the tool, which it does not
/// own. Without a node another one can still be chosen.
class RyJointEditorToolFrame : public QFrame
{
    Q_OBJECT
public:
    RyJointEditorToolFrame(QWidget *parent, RyJointEditorTool *tool);

    QSize minimumSizeHint() const override;
    /// Folds the display options away.
    QWidget *getDividerBar() const;

private slots:
    void setParam(int selection);
    void updateNode(RyNode *node);
    void updateParam(RyLegacyJointParam *param);
    void setRotation(int selection);

private:
    QWidget *makeTop();
    void addRow(QGridLayout *grid, int row, const QString &label, const char *labelName, QWidget *field);
    QComboBox *makeRotationOrder(QWidget *parent);
    void orderFocus(QWidget *top);
    void updateRotationOrder();

    RyJointEditorTool *m_tool;
    QPointer<RyNode> m_node;
    RyJointParamPanel *m_paramPanel = nullptr;
    RyCenterEndPanel *m_centerEndPanel = nullptr;
    RyJointParamCombo *m_params = nullptr;
    QComboBox *m_rotationOrder = nullptr;
    RyDynamicDividerWgt *m_divider = nullptr;
};
