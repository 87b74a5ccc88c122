#pragma once

#include "rycore/base/RyAppSettings.h"

#include <QStringList>
#include <QTemporaryDir>

/// Keeps what is read from and written to the settings while it lives: "group/key get|set type".
class RySettingsRecorder
{
public:
    RySettingsRecorder()
    {
        current() = &accesses;
        RyAppSettings::setObserver(record);
    }
    ~RySettingsRecorder()
    {
        RyAppSettings::setObserver(nullptr);
        current() = nullptr;
    }
    QStringList keys(const char *access) const
    {
        QStringList found;
        for (const QString &line : accesses) {
            const QStringList fields = line.section('/', 1).split(' ');
            if (fields.at(1) == QLatin1String(access))
                found.append(fields.at(0));
        }
        return found;
    }
    QStringList accesses;

private:
    static QStringList *&current()
    {
        static QStringList *list = nullptr;
        return list;
    }
    static void record(const QString &group, const QString &key, const char *access, const char *type)
    {
        if (current())
            current()->append(
                QStringLiteral("%1/%2 %3 %4").arg(group, key, QLatin1String(access), QLatin1String(type)));
    }
};

/// An empty settings store for one test.
struct RySettingsStoreForTest
{
    RySettingsStoreForTest() { RyAppSettings::setSettingsPath(folder.path()); }
    ~RySettingsStoreForTest() { RyAppSettings::setSettingsPath(QString()); }
    QTemporaryDir folder;
    RyAppSettings settings{QStringLiteral("Joint Editor Tool")};
};
