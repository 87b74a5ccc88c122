#pragma once

#include "rycore/scene/RyNode.h"
#include "rycore/skin/RyBoneBinding.h"

#include <QPointer>
#include <QWidget>

#include <array>

class RyBindingBulgeView;
class RyCenterEndGeneralPage;
class RyExtendedTabWidget;
class RyJointEditorTool;
class RySkinBinding;

/// What the pane shows of a node itself: its points, and how it bulges where a skin has weights for that.
class RyCenterEndPanel : public QWidget
{
    Q_OBJECT
public:
    RyCenterEndPanel(RyJointEditorTool *tool, QWidget *parent = nullptr);

    /// Fills both tabs; they follow the tool by themselves after that.
    void showNode(RyNode *node);

public slots:
    void updateNode(RyNode *node);

private:
    void followSkin();
    void followScene();
    RyBoneBinding *bindingWithBulges() const;

    QPointer<RyNode> m_node;
    QPointer<RySkinBinding> m_skin;
    QPointer<RyBoneBinding> m_binding; // whose bulges are shown
    std::array<QMetaObject::Connection, 2> m_scene;
    RyExtendedTabWidget *m_tabs;
    RyCenterEndGeneralPage *m_general;
    RyBindingBulgeView *m_bulges;
};
