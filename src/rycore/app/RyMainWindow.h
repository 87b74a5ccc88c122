#pragma once

#include <QMainWindow>

#include <memory>

class RyActionMgr;
class RyScene;
class RyScriptEngine;
class RyViewportMgr;

/// The main window as plug-ins know it: services, no panes.
class RyMainWindow : public QMainWindow
{
    Q_OBJECT
public:
    explicit RyMainWindow(RyScene *scene, QWidget *parent = nullptr);
    ~RyMainWindow() override;

    RyViewportMgr *getViewportMgr() const;
    RyActionMgr *getActionMgr() const;
    RyScriptEngine *getScriptEngine() const;
    RyScene *getScene() const;

    /// Loads the plug-ins of a folder: their tools and actions are created in order of the factories, classes are
    /// registered with scripts, and the messages of refused libraries are in the log.
    int loadPlugins(const QString &folder);
    /// Deletes actions, tools and scripts, with what scripts made of the plug-ins' classes; called by the destructor.
    /// The libraries themselves are unloaded when the application object goes, after all widgets.
    void unloadPlugins();
    /// Shows the context menu of the active tool; nothing where it adds no items.
    void showToolMenu(const QPoint &globalPosition);

public slots:
    /// A passing line in the status bar.
    void showMessage(const QString &message);

private:
    void showStatusTip(const QString &text);

    struct Private;
    std::unique_ptr<Private> d;
};
