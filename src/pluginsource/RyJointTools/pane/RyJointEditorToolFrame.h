#pragma once

#include "rycore/scene/RyNode.h"

#include <QFrame>
#include <QPointer>

class QComboBox;
class QLabel;
class RyFloatPropertyWgt;
class RyJointEditorTool;

/// The tool settings pane: the current node, its rotation order, and its center point, end point and orientation by
/// number. Made by the tool, which it does not own.
class RyJointEditorToolFrame : public QFrame
{
    Q_OBJECT
public:
    RyJointEditorToolFrame(QWidget *parent, RyJointEditorTool *tool);

    QSize minimumSizeHint() const override;
    /// What the host offers to fold the pane away with.
    QWidget *getDividerBar() const { return m_dividerBar; }

private slots:
    void updateNode(RyNode *node);
    void updateHeader();
    void setRotation(int selection);

private:
    QWidget *makeHeader();
    QWidget *makeNumbers();

    RyJointEditorTool *m_tool;
    QPointer<RyNode> m_node;
    QLabel *m_nodeName = nullptr;
    QComboBox *m_rotationOrder = nullptr;
    RyFloatPropertyWgt *m_numbers[9] = {};
    QWidget *m_dividerBar;
};
