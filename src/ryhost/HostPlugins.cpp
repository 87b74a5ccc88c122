#include "ryhost/HostPlugins.h"

#include "rycore/app/RyBindToNearestBonesAction.h"
#include "rycore/app/RyMainWindow.h"
#include "rycore/ui/RyActionMgr.h"

#include <QCoreApplication>
#include <QDir>

QString hostPluginFolder()
{
    const QString chosen = qEnvironmentVariable("RYHOST_PLUGIN_PATH");
    return chosen.isEmpty() ? QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("../plugins")) : chosen;
}

int loadHostPlugins(RyMainWindow &window)
{
    window.getActionMgr()->addAction(new RyBindToNearestBonesAction);
    return window.loadPlugins(hostPluginFolder());
}
