#include "ryhost/menus/FileMenu.h"

#include "rycore/app/RyMainWindow.h"
#include "ryhost/commands/HostFiles.h"
#include "ryhost/commands/menuEntries.h"
#include "ryhost/commands/menuText.h"

#include <QDir>
#include <QFileInfo>
#include <QMenu>
#include <QMenuBar>

FileMenu::FileMenu(RyMainWindow *window, HostFiles *files, QObject *parent) : QObject(parent), m_files(files)
{
    QMenu *menu = window->menuBar()->addMenu(tr("&File"));
    menu->setObjectName(QStringLiteral("FileMenu"));
    connect(addMenuEntry(menu, "FileOpen", tr("&Open..."), tr("Open a character or a prop in place of this scene"),
                         QKeySequence::Open, "open"),
            &QAction::triggered, files, &HostFiles::openWithDialog);
    m_recent = menu->addMenu(tr("Open &Recent"));
    m_recent->setObjectName(QStringLiteral("RecentMenu"));
    connect(m_recent, &QMenu::aboutToShow, this, &FileMenu::fillRecent);
    connect(files, &HostFiles::recentChanged, this, &FileMenu::fillRecent);
    fillRecent();
    connect(addMenuEntry(menu, "FileMerge", tr("&Merge..."), tr("Add the contents of another file to this scene")),
            &QAction::triggered, files, &HostFiles::mergeWithDialog);
    menu->addSeparator();
    connect(
        addMenuEntry(menu, "FileSave", tr("&Save"), tr("Save to the file that was opened"), QKeySequence::Save, "save"),
        &QAction::triggered, files, [files] { files->save(); });
    connect(addMenuEntry(menu, "FileSaveAs", tr("Save &As..."), tr("Save to another file"),
                         QKeySequence(QStringLiteral("Ctrl+Shift+S"))),
            &QAction::triggered, files, [files] { files->saveAs(); });
    QAction *jointsOnly =
        addMenuEntry(menu, "FileJointsOnly", tr("Save &Joints Only"),
                     tr("Leave clips as they are when saving; otherwise they are re-expressed for edited joints"));
    jointsOnly->setCheckable(true);
    connect(jointsOnly, &QAction::toggled, files, &HostFiles::setSavesJointsOnly);
    connect(files, &HostFiles::savesJointsOnlyChanged, jointsOnly, &QAction::setChecked);
    menu->addSeparator();
    m_notes = addMenuEntry(menu, "FileNotes", tr("&Notes..."), QString());
    connect(m_notes, &QAction::triggered, files, &HostFiles::showNotes);
    connect(files, &HostFiles::notesChanged, this, &FileMenu::updateNotes);
    updateNotes();
    menu->addSeparator();
    connect(addMenuEntry(menu, "FileQuit", tr("&Quit"), tr("Close the window; unsaved changes are asked about"),
                         QKeySequence(QStringLiteral("Ctrl+Q"))),
            &QAction::triggered, window, &QWidget::close);
}

void FileMenu::updateNotes()
{
    setMenuEntryAvailable(m_notes, !m_files->notes().isEmpty(),
                          tr("There is nothing to say about the file that was opened or saved last."),
                          tr("What there was to say about the file that was opened or saved last"));
}

void FileMenu::fillRecent()
{
    m_recent->clear();
    const QStringList files = m_files->recentFiles();
    for (const QString &path : files) {
        QAction *action = m_recent->addAction(menuTextOf(QFileInfo(path).fileName()));
        setMenuEntryAvailable(action, QFileInfo::exists(path),
                              tr("%1 is not there any more.").arg(QDir::toNativeSeparators(path)),
                              QDir::toNativeSeparators(path));
        // Queued: opening fills this menu anew, and the action would be gone while it is triggered.
        connect(
            action, &QAction::triggered, this, [this, path] { m_files->openPathAsking(path); }, Qt::QueuedConnection);
    }
    setMenuEntryAvailable(m_recent->menuAction(), !files.isEmpty(), tr("No file has been opened or saved yet."),
                          tr("Open one of the latest files in place of this scene"));
    if (files.isEmpty())
        return;
    m_recent->addSeparator();
    QAction *clear = m_recent->addAction(tr("Clear List"));
    clear->setStatusTip(tr("Forget which files have been opened; the files stay"));
    connect(clear, &QAction::triggered, m_files, &HostFiles::clearRecent, Qt::QueuedConnection);
}
