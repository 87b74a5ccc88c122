#include "ryhost/commands/FileDialogs.h"

#include "rycore/base/RyAppSettings.h"
#include "rycore/io/RySceneFile.h"
#include "ryhost/commands/RecentFiles.h"

#include <QDir>
#include <QFileDialog>
#include <QStandardPaths>

namespace {

const char *const SettingsGroup = "Files";
const char *const FolderKey = "Folder";

QString filterOf(const QStringList &endings, const QString &title)
{
    QStringList patterns;
    for (const QString &ending : endings)
        patterns.append(QStringLiteral("*.") + ending);
    return QStringLiteral("%1 (%2)").arg(title, patterns.join(QLatin1Char(' ')));
}

} // namespace

QString FileDialogs::folderFor(const QString &path) const
{
    QStringList folders;
    if (!path.isEmpty())
        folders.append(QFileInfo(path).absolutePath());
    folders.append(
        RyAppSettings(QString::fromLatin1(SettingsGroup)).getStringValue(QString::fromLatin1(FolderKey), QString()));
    for (const QString &recent : m_recent->paths())
        folders.append(QFileInfo(recent).absolutePath());
    folders.append(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
    for (const QString &folder : qAsConst(folders)) {
        if (!folder.isEmpty() && QFileInfo(folder).isDir())
            return folder;
    }
    return QDir::homePath();
}

void FileDialogs::rememberFolderOf(const QString &path) const
{
    RyAppSettings(QString::fromLatin1(SettingsGroup))
        .setStringValue(QString::fromLatin1(FolderKey), QFileInfo(path).absolutePath());
}

QString FileDialogs::askForOpening(const QString &title, const QString &path) const
{
    QFileDialog dialog(m_window, title, folderFor(path),
                       filterOf(RySceneFile::readableEndings(), tr("Characters and props")));
    dialog.setObjectName(QStringLiteral("FileDlg"));
    dialog.setFileMode(QFileDialog::ExistingFile);
    return dialog.exec() == QDialog::Accepted ? dialog.selectedFiles().value(0) : QString();
}

QString FileDialogs::askForWriting(const QString &title, const QString &suggestion, const QStringList &endings) const
{
    const QFileInfo suggested(suggestion);
    QFileDialog dialog(m_window, title, suggested.absolutePath(), filterOf(endings, tr("Files that can be written")));
    dialog.setObjectName(QStringLiteral("FileDlg"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setDefaultSuffix(endings.first());
    dialog.selectFile(suggested.fileName());
    return dialog.exec() == QDialog::Accepted ? dialog.selectedFiles().value(0) : QString();
}
