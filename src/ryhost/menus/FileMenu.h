#pragma once

#include <QObject>

class HostFiles;
class QAction;
class QMenu;
class RyMainWindow;

/// Opening, merging and saving, with the list of the latest files.
class FileMenu : public QObject
{
    Q_OBJECT
public:
    FileMenu(RyMainWindow *window, HostFiles *files, QObject *parent);

private:
    void fillRecent();
    void updateNotes();

    HostFiles *m_files;
    QMenu *m_recent;
    QAction *m_notes;
};
