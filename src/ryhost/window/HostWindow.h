#pragma once

#include "rycore/app/RyMainWindow.h"

class ActionSearch;
class HostFiles;
class HistoryPane;
class HostMenus;
class ParametersPane;
class QLabel;
class Ry3DViewport;
class ScenePane;
class ToolSettingsPane;
class ToolStrip;

/// The window: the viewport with its panes about it, and the plug-ins.
class HostWindow : public RyMainWindow
{
    Q_OBJECT
public:
    explicit HostWindow(RyScene *scene, QWidget *parent = nullptr);
    ~HostWindow() override;

    Ry3DViewport *viewport() const { return m_viewport; }
    HostFiles *files() const { return m_files; }
    ScenePane *scenePane() const { return m_scenePane; }
    ToolSettingsPane *toolSettingsPane() const { return m_toolSettingsPane; }
    HostMenus *menus() const { return m_menus; }
    ActionSearch *actionSearch() const { return m_search; }
    QList<QDockWidget *> docks() const { return m_docks; }
    QLabel *statusLabel() const { return m_status; }

    bool isDark() const { return m_dark; }

public slots:
    void setDark(bool dark);
    void setWireframe(bool onOff);
    void showHistory();
    /// Brings docks and toolbars back to their first places.
    void resetLayout();

protected:
    void closeEvent(QCloseEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void addDock(const QString &title, const QString &objectName, QWidget *content);
    void makePanes();
    /// Activates the joint editor where there is one.
    void startPlugins();
    void makeViewport();
    void layOutPanes();
    void makeStatusBar();
    void saveLayout();
    void restoreLayout();
    void updateTitle();
    void updateStatus();
    void fileOpened();
    void openDropped(QStringList paths);

    Ry3DViewport *m_viewport = nullptr;
    HostFiles *m_files;
    ScenePane *m_scenePane = nullptr;
    ParametersPane *m_parametersPane = nullptr;
    ToolSettingsPane *m_toolSettingsPane = nullptr;
    HistoryPane *m_historyPane = nullptr;
    ToolStrip *m_toolStrip = nullptr;
    HostMenus *m_menus = nullptr;
    ActionSearch *m_search = nullptr;
    QList<QDockWidget *> m_docks;
    QLabel *m_status = nullptr;
    QLabel *m_undoStatus = nullptr;
    QLabel *m_unitStatus = nullptr;
    QByteArray m_firstLayout;
    bool m_dark = true;
    bool m_isOpening = false; // what was dropped
};
