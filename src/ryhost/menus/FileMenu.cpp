#include "ryhost/menus/FileMenu.h"

#include "rycore/app/RyMainWindow.h"
#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyUndoStack.h"
#include "ryhost/commands/FileNotes.h"
#include "ryhost/commands/HostFiles.h"
#include "ryhost/commands/RecentFiles.h"
#include "ryhost/commands/menuEntries.h"
#include "ryhost/commands/menuText.h"

#include <QDir>
#include <QFileInfo>
#include <QMenu>
#include <QMenuBar>

FileMenu::FileMenu(RyMainWindow *window, HostFiles *files, QObject *parent)
    : QObject(parent), m_files(files), m_menu(window->menuBar()->addMenu(tr("&File")))
{
    m_menu->setObjectName(QStringLiteral("FileMenu"));
    addOpening();
    m_menu->addSeparator();
    addSaving();
    m_menu->addSeparator();
    m_notes = addMenuEntry(m_menu, "FileNotes", tr("&Notes..."), QString());
    connect(m_notes, &QAction::triggered, files->notes(), &FileNotes::show);
    connect(files->notes(), &FileNotes::changed, this, &FileMenu::updateNotes);
    updateNotes();
    m_menu->addSeparator();
    m_close = addMenuEntry(m_menu, "FileClose", tr("C&lose"), QString());
    connect(m_close, &QAction::triggered, files, &HostFiles::closeFile);
    connect(addMenuEntry(m_menu, "FileQuit", tr("&Quit"), tr("Close the window; unsaved changes are asked about"),
                         QKeySequence(QStringLiteral("Ctrl+Q"))),
            &QAction::triggered, window, &QWidget::close);
    // Another program may have written the file, which nothing here hears of.
    connect(m_menu, &QMenu::aboutToShow, this, &FileMenu::updateEntries);
    connect(files, &HostFiles::titleChanged, this, &FileMenu::updateEntries);
    connect(ryUndoStack(), &RyUndoStack::cleanChanged, this, &FileMenu::updateEntries);
    connect(window->getScene(), &RyScene::nodeListChanged, this, [this, window] {
        // Scenes announce every node; what can be saved differs with the first and the last one alone.
        if (m_save->isEnabled() == window->getScene()->getNodes().empty())
            updateEntries();
    });
    updateEntries();
}

void FileMenu::addOpening()
{
    connect(addMenuEntry(m_menu, "FileNew", tr("Ne&w"),
                         tr("Start with an empty scene; unsaved changes are asked about"), QKeySequence::New),
            &QAction::triggered, m_files, &HostFiles::newScene);
    connect(addMenuEntry(m_menu, "FileOpen", tr("&Open..."), tr("Open a character or a prop in place of this scene"),
                         QKeySequence::Open, "open"),
            &QAction::triggered, m_files, &HostFiles::openWithDialog);
    m_recent = m_menu->addMenu(tr("Open &Recent"));
    m_recent->setObjectName(QStringLiteral("RecentMenu"));
    m_recent->setToolTipsVisible(true);
    connect(m_recent, &QMenu::aboutToShow, this, &FileMenu::fillRecent);
    connect(m_files->recent(), &RecentFiles::changed, this, &FileMenu::fillRecent);
    fillRecent();
    connect(addMenuEntry(m_menu, "FileOpenSample", tr("Open Sample &Figure"),
                         tr("Open the figure that comes with the program in place of this scene")),
            &QAction::triggered, m_files, &HostFiles::openSampleAsking);
    connect(addMenuEntry(m_menu, "FileMerge", tr("&Merge..."), tr("Add the contents of another file to this scene")),
            &QAction::triggered, m_files, &HostFiles::mergeWithDialog);
    m_revert = addMenuEntry(m_menu, "FileRevert", tr("Rever&t..."), QString());
    connect(m_revert, &QAction::triggered, m_files, &HostFiles::revert);
}

void FileMenu::addSaving()
{
    m_save = addMenuEntry(m_menu, "FileSave", tr("&Save"), QString(), QKeySequence::Save, "save");
    connect(m_save, &QAction::triggered, m_files, &HostFiles::save);
    m_saveAs =
        addMenuEntry(m_menu, "FileSaveAs", tr("Save &As..."), QString(), QKeySequence(QStringLiteral("Ctrl+Shift+S")));
    connect(m_saveAs, &QAction::triggered, m_files, &HostFiles::saveAs);
    m_saveCopy = addMenuEntry(m_menu, "FileSaveCopy", tr("Save a &Copy..."), QString());
    connect(m_saveCopy, &QAction::triggered, m_files, &HostFiles::saveCopy);
    m_export = addMenuEntry(m_menu, "FileExport", tr("&Export Without Extras..."), QString());
    connect(m_export, &QAction::triggered, m_files, &HostFiles::exportWithoutExtras);
    QAction *jointsOnly =
        addMenuEntry(m_menu, "FileJointsOnly", tr("Save &Joints Only"),
                     tr("Leave clips as they are when saving; otherwise they are re-expressed for edited joints"));
    jointsOnly->setCheckable(true);
    connect(jointsOnly, &QAction::toggled, m_files, &HostFiles::setSavesJointsOnly);
    connect(m_files, &HostFiles::savesJointsOnlyChanged, jointsOnly, &QAction::setChecked);
}

void FileMenu::updateEntries()
{
    const auto update = [](QAction *action, const QString &reason, const QString &tip) {
        setMenuEntryAvailable(action, reason.isEmpty(), reason, tip);
    };
    const QString notSaved = m_files->file().whyNotSaved();
    update(m_save, notSaved,
           m_files->file().savesInPlace() ? tr("Save to the file that was opened") : tr("Save to a file; asks which"));
    update(m_saveAs, notSaved, tr("Save to another file, and go on with that"));
    update(m_saveCopy, notSaved, tr("Save to another file, and go on with this one"));
    update(
        m_export, notSaved,
        tr("Write a glTF file for other programs that says nothing beyond the format; what that leaves out is told"));
    update(m_revert, m_files->file().whyNotReverted(),
           tr("Open the file again as it is on the disk; says what is lost first"));
    update(m_close, m_files->file().whyNotClosed(),
           tr("Leave the file for an empty scene; unsaved changes are asked about"));
}

void FileMenu::updateNotes()
{
    setMenuEntryAvailable(m_notes, !m_files->notes()->texts().isEmpty(),
                          tr("There is nothing to say about the file that was opened or saved last."),
                          tr("What there was to say about the file that was opened or saved last"));
}

void FileMenu::fillRecent()
{
    m_recent->clear();
    const QStringList files = m_files->recentFiles();
    const QStringList labels = RecentFiles::labelsOf(files);
    for (int i = 0; i < files.size(); ++i) {
        const QString path = files[i];
        QAction *action = m_recent->addAction(menuTextOf(labels[i]));
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
    connect(clear, &QAction::triggered, m_files->recent(), &RecentFiles::clear, Qt::QueuedConnection);
}
