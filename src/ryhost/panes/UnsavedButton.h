#pragma once

#include <QToolButton>

class HostFiles;

/// Says in the status bar how many edits the file lacks, and by its tip which ones and since when: the star in the
/// title, which can have no tip. Hidden when everything is saved.
class UnsavedButton : public QToolButton
{
    Q_OBJECT
public:
    explicit UnsavedButton(HostFiles *files, QWidget *parent = nullptr);

private:
    void refresh();

    HostFiles *m_files;
};
