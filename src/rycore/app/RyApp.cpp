#include "rycore/app/RyApp.h"

#include "rycore/app/RyMainWindow.h"
#include "rycore/scene/assets/RyAssetIOMgr.h"

#include <QApplication>
#include <QCursor>
#include <QDir>
#include <QFileInfo>
#include <QPointer>

static QPointer<RyMainWindow> s_interface;
static QString s_defaultHome;
static int s_busyDepth = 0;
static RyAssetIOMgr *s_assetIOMgr = RyApp::defaultAssetIOMgr();

RyMainWindow *RyApp::getInterface()
{
    return s_interface;
}

void RyApp::setInterface(RyMainWindow *window)
{
    s_interface = window;
}

QString RyApp::getHomePath()
{
    const QString given = qEnvironmentVariable("RYHOST_HOME");
    if (!given.isEmpty())
        return QDir(given).absolutePath();
    const QDir program(QCoreApplication::applicationDirPath());
    for (const char *place : {"../share/ryhost", "../../resources", "../resources"}) {
        const QFileInfo folder(program.filePath(QString::fromLatin1(place)));
        if (folder.isDir())
            return QDir(folder.absoluteFilePath()).absolutePath();
    }
    return s_defaultHome;
}

void RyApp::setDefaultHomePath(const QString &folder)
{
    s_defaultHome = folder;
}

RyAssetIOMgr *RyApp::getAssetIOMgr()
{
    return s_assetIOMgr;
}

void RyApp::setAssetIOMgr(RyAssetIOMgr *manager)
{
    s_assetIOMgr = manager;
}

RyAssetIOMgr *RyApp::defaultAssetIOMgr()
{
    static RyAssetIOMgr manager;
    return &manager;
}

QWidget *RyApp::getDialogParent()
{
    QWidget *modal =
        qobject_cast<QApplication *>(QCoreApplication::instance()) ? QApplication::activeModalWidget() : nullptr;
    return modal ? modal : s_interface.data();
}

void RyApp::startBusyCursor()
{
    if (++s_busyDepth == 1 && QCoreApplication::instance())
        QGuiApplication::setOverrideCursor(Qt::WaitCursor);
}

void RyApp::endBusyCursor()
{
    if (s_busyDepth == 0)
        return;
    if (--s_busyDepth == 0 && QCoreApplication::instance())
        QGuiApplication::restoreOverrideCursor();
}

int RyApp::busyCursorDepth()
{
    return s_busyDepth;
}
