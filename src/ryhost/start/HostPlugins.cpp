#include "ryhost/start/HostPlugins.h"

#include "rycore/app/RyApp.h"
#include "rycore/app/RyBindToNearestBonesAction.h"
#include "rycore/app/RyFitZonesToBoneAction.h"
#include "rycore/app/RyMainWindow.h"
#include "rycore/app/RySymmetricEditingAction.h"
#include "rycore/base/RyMessageLog.h"
#include "rycore/ui/RyActionMgr.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

QString hostPluginFolder()
{
    const QString chosen = qEnvironmentVariable("RYHOST_PLUGIN_PATH");
    if (!chosen.isEmpty())
        return chosen;
    const QDir program(QCoreApplication::applicationDirPath());
    const QString installed = program.filePath(QStringLiteral("../lib/ryhost/plugins"));
    return QFileInfo(installed).isDir() ? installed : program.filePath(QStringLiteral("../plugins"));
}

/// Commands whose script is missing do nothing, and say nothing.
static void checkScriptLibrary()
{
    const QString folder = RyApp::getHomePath() + QStringLiteral("/scripts/");
    for (const char *file : {"support/Velmor/OstraToolkit/ryRenameNode.rsx"}) {
        if (!QFileInfo(folder + QString::fromLatin1(file)).isReadable()) {
            RyMessageLog::global().warning(
                QStringLiteral(
                    "The script library %1 has no %2 that can be read; the command that needs it does nothing.")
                    .arg(QDir::toNativeSeparators(folder), QString::fromLatin1(file)));
        }
    }
}

int loadHostPlugins(RyMainWindow &window)
{
    window.getActionMgr()->addAction(new RyBindToNearestBonesAction);
    window.getActionMgr()->addAction(new RyFitZonesToBoneAction);
    window.getActionMgr()->addAction(new RySymmetricEditingAction);
    const int loaded = window.loadPlugins(hostPluginFolder());
    checkScriptLibrary();
    return loaded;
}
