#include "ryhost/look/HostIcons.h"

#include "rycore/app/RyApp.h"
#include "ryhost/look/HostIconEngine.h"

#include <QFile>
#include <QFileInfo>

static QString pathOf(const QString &name)
{
    return RyApp::getHomePath() + QStringLiteral("/icons/") + name + QStringLiteral(".svg");
}

bool HostIcons::exists(const QString &name)
{
    return QFileInfo::exists(pathOf(name));
}

QIcon HostIcons::icon(const QString &name)
{
    QFile file(pathOf(name));
    return file.open(QIODevice::ReadOnly) ? QIcon(new HostIconEngine(file.readAll())) : QIcon();
}
