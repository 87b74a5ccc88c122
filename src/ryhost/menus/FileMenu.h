#pragma once

#include <QObject>

class HostFiles;
class QAction;
class QMenu;
class RyMainWindow;

/// The File menu of the window.
class FileMenu : public QObject
{
    Q_OBJECT
public:
    FileMenu(RyMainWindow *window, HostFiles *files, QObject *parent);

private:
    void addOpening();
    void addSaving();
    void fillRecent();
    void updateNotes();
    /// What can be saved, reverted and closed now.
    void updateEntries();

    HostFiles *m_files;
    QMenu *m_menu;
    QMenu *m_recent = nullptr;
    QAction *m_save = nullptr;
    QAction *m_saveAs = nullptr;
    QAction *m_saveCopy = nullptr;
    QAction *m_export = nullptr;
    QAction *m_revert = nullptr;
    QAction *m_close = nullptr;
    QAction *m_notes = nullptr;
};
