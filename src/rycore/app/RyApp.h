#pragma once

#include <QString>

class QWidget;
class RyAssetIOMgr;
class RyMainWindow;

/// The application's services. All calls come on the GUI thread.
class RyApp
{
public:
    /// The main window, null when there is none.
    static RyMainWindow *getInterface();
    /// Folder with the host's scripts and samples: RYHOST_HOME, else beside the program or in the source tree.
    static QString getHomePath();
    /// Keeps account of running loads; may be null.
    static RyAssetIOMgr *getAssetIOMgr();
    /// Parent for message boxes and dialogs; may be null.
    static QWidget *getDialogParent();

    /// Busy cursor, counted.
    static void startBusyCursor();
    static void endBusyCursor();
    static int busyCursorDepth();

    /// Where the home is when neither the environment nor the place of the program tells.
    static void setDefaultHomePath(const QString &folder);
    static void setInterface(RyMainWindow *window);
    /// Replaces the manager by one that the caller owns; null for none.
    static void setAssetIOMgr(RyAssetIOMgr *manager);
    /// The manager that the application starts with.
    static RyAssetIOMgr *defaultAssetIOMgr();
};
