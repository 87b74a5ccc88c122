#pragma once

#include <QPointer>
#include <QWidget>

class QLabel;
class QScrollArea;
class QToolButton;
class RyMenu;
class RyViewTool;

/// Shows the settings widget of the active tool under a line with the tool's name and menu, and gives the widget back
/// to nobody when another tool comes.
class ToolSettingsPane : public QWidget
{
    Q_OBJECT
public:
    explicit ToolSettingsPane(QWidget *parent = nullptr);

    void showTool(RyViewTool *tool);
    RyMenu *optionsMenu() const { return m_menu; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void giveRoom();
    void showHeader(RyViewTool *tool);
    void showSettings(RyViewTool *tool);

    QWidget *m_header;
    QLabel *m_name;
    QToolButton *m_menuButton;
    RyMenu *m_menu;
    QScrollArea *m_scroll;
    QPointer<QWidget> m_shown;
    QPointer<QWidget> m_empty;
};
