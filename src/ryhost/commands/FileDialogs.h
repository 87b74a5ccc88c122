#pragma once

#include <QCoreApplication>
#include <QStringList>

class QWidget;
class RecentFiles;

/// Asks for the files that the window opens and writes. What is chosen is remembered: the next question begins there
/// when the scene has no folder of its own.
class FileDialogs
{
    Q_DECLARE_TR_FUNCTIONS(FileDialogs)
public:
    FileDialogs(QWidget *window, const RecentFiles *recent) : m_window(window), m_recent(recent) {}

    /// The first that exists: the folder of `path` (may be empty), the one used last, those of the recent files, that
    /// for documents, home.
    QString folderFor(const QString &path) const;
    void rememberFolderOf(const QString &path) const;

    /// An absolute path; empty when nothing was chosen.
    QString askForOpening(const QString &title, const QString &path) const;
    /// Asks before another file is replaced, also where the ending, the first of `endings`, was left out.
    QString askForWriting(const QString &title, const QString &suggestion, const QStringList &endings) const;

private:
    QWidget *m_window;
    const RecentFiles *m_recent;
};
