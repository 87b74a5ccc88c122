#pragma once

#include <QPointer>
#include <QScrollArea>

class RyViewTool;

/// Shows the settings widget of the active tool and gives it back to nobody when another one comes.
class ToolSettingsPane : public QScrollArea
{
    Q_OBJECT
public:
    explicit ToolSettingsPane(QWidget *parent = nullptr);

    void showTool(RyViewTool *tool);

private:
    QPointer<QWidget> m_shown;
    QPointer<QWidget> m_empty;
};
