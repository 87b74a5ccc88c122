#pragma once

#include "rycore/scene/RyNode.h"

#include <QPointer>
#include <QWidget>

#include <array>

class QCheckBox;
class QVBoxLayout;
class RyFloatPropertyWgt;
class RyJointEditorTool;

/// Center point, end point and orientation of the tool's node, and three switches of it. Every edit of a number is one
/// undo step and one edit of the node, which announces its rigging once; the switches write at once and leave no step.
class RyCenterEndGeneralPage : public QWidget
{
    Q_OBJECT
public:
    /// Shows no node until it is told of one.
    RyCenterEndGeneralPage(RyJointEditorTool *tool, QWidget *parent = nullptr);
    ~RyCenterEndGeneralPage() override;

    void showNode(RyNode *node) { updateNode(node); }

private slots:
    void updateNode(RyNode *node);
    /// Reads everything from the node again.
    void refresh();
    void startNodeEdit();
    void align();
    void snapCenter();
    void snapEnd();
    void setAutoAlign(bool onOff);
    void setAutoSnapEndPoints(bool onOff);
    void nodeRemoved();
    void inheritsScaleChanged();
    void promoteSelectoinChange();
    void updateInheritScaleFromNode();
    void updatePromoteSelectionFromNode();
    void hiddenChanged();
    void updateHiddenFromNode();

private:
    void addNumbers(QVBoxLayout *column, size_t group);
    void addSwitches(QVBoxLayout *column);
    void alignLabels();
    /// What is being edited stays with the node that it was begun for.
    void finishEdits();
    void finishNodeEdit();
    void followNode();
    /// Runs an operation as one step; none when it fails.
    template<typename Operation>
    void perform(Operation operation, const QString &caption);

    RyJointEditorTool *m_tool;
    QPointer<RyNode> m_node;
    QPointer<RyNode> m_editedNode; // while a number is edited
    std::array<RyFloatPropertyWgt *, 9> m_numbers = {};
    QCheckBox *m_inheritScale = nullptr;
    QCheckBox *m_promoteSelection = nullptr;
    QCheckBox *m_hidden = nullptr;
};
