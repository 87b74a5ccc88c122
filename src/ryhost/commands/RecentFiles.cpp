#include "ryhost/commands/RecentFiles.h"

#include "rycore/base/RyAppSettings.h"

#include <QDir>

#include <algorithm>

namespace {

const char *const SettingsGroup = "Files";
const char *const RecentKey = "Recent";

/// The end of a path from so many folders above the file on; all of it where it has no more.
QString endOf(const QString &path, int folders)
{
    const QStringList parts = path.split(QLatin1Char('/'));
    return parts.size() <= folders + 1 ? path
                                       : QStringList(parts.mid(parts.size() - folders - 1)).join(QLatin1Char('/'));
}

QString labelAmong(const QString &path, const QStringList &paths)
{
    for (int folders = 0;; ++folders) {
        const QString label = endOf(path, folders);
        const bool tellsApart = std::none_of(paths.begin(), paths.end(), [&](const QString &other) {
            return other != path && endOf(other, folders) == label;
        });
        if (tellsApart || label == path)
            return QDir::toNativeSeparators(label);
    }
}

} // namespace

QStringList RecentFiles::paths() const
{
    return RyAppSettings(QString::fromLatin1(SettingsGroup)).getStringListValue(QString::fromLatin1(RecentKey));
}

void RecentFiles::add(const QString &path)
{
    QStringList files = paths();
    files.removeAll(path);
    files.prepend(path);
    while (files.size() > Most)
        files.removeLast();
    RyAppSettings(QString::fromLatin1(SettingsGroup)).setStringListValue(QString::fromLatin1(RecentKey), files);
    emit changed();
}

void RecentFiles::clear()
{
    RyAppSettings(QString::fromLatin1(SettingsGroup)).setStringListValue(QString::fromLatin1(RecentKey), {});
    emit changed();
}

QStringList RecentFiles::labelsOf(const QStringList &paths)
{
    QStringList labels;
    for (const QString &path : paths)
        labels.append(labelAmong(path, paths));
    return labels;
}

QString RecentFiles::labelOf(const QString &path) const
{
    return labelAmong(path, paths());
}
