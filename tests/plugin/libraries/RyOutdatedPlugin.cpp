#include "rycore/base/RyPlugin.h"

#include <QCoreApplication>
#include <QVariant>

extern "C" {

Q_DECL_EXPORT RyVersion getSDKVersion()
{
    return RyVersion(4, 21, 0, 7);
}

Q_DECL_EXPORT RyPlugin *getPluginDefinition()
{
    qApp->setProperty("outdatedPluginAsked", true);
    static RyPlugin plugin(QLatin1String("Outdated"), QString(), QString(), 1, 0, 0, 0);
    return &plugin;
}
}
