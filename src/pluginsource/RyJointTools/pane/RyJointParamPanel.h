#pragma once

#include <QWidget>

class RyJointEditorTool;

/// What the pane shows of a joint parameter.
class RyJointParamPanel : public QWidget
{
    Q_OBJECT
public:
    RyJointParamPanel(RyJointEditorTool *tool, QWidget *parent);
};
