#pragma once

#include "ryhost/commands/FileDialogs.h"
#include "ryhost/commands/OpenedFile.h"

#include <QObject>
#include <QPointer>
#include <QStringList>

class FileNotes;
class QWidget;
class RecentFiles;
class RyScene;

/// Opens, saves and leaves the scene for the window, with questions about unsaved changes and messages that name the
/// file and the reason.
class HostFiles : public QObject
{
    Q_OBJECT
public:
    HostFiles(RyScene *scene, QWidget *window);

    /// Of which file the scene is, and how it differs from that.
    const OpenedFile &file() const { return m_file; }
    const QString &path() const { return m_file.path(); }
    /// What there was to say about the file that was opened, merged or saved last.
    FileNotes *notes() const { return m_notes; }
    /// The file's name, with as much of its path as tells it from other recent ones, and how many files were merged
    /// into it since.
    QString title() const;
    /// Where the scene came from and how large its units are, for people.
    QString description() const;
    RecentFiles *recent() const { return m_recent; }
    QStringList recentFiles() const;

    /// Replaces the scene without asking; false with a message on the screen when the file is refused.
    bool openPath(const QString &path);
    /// The figure that comes with the program, for who brings none; saving it asks where.
    bool openSample();
    /// Asks about unsaved changes first.
    bool openPathAsking(const QString &path);
    bool mergePath(const QString &path);
    /// Asks where another program has written the scene's own file since it was opened or saved.
    bool savePath(const QString &path);
    /// Title, unsaved changes and undo history stay as they are. False with a message for the file that is open.
    bool saveCopyTo(const QString &path);
    /// Likewise, for other programs: nothing of ours in the extras. What that leaves out is said.
    bool exportTo(const QString &path);
    /// The scene holds unsaved work that was brought back after a crash.
    void takeRecovered(const OpenedFile::Recovered &work, const QStringList &notes);
    /// False when the user would rather stay.
    bool confirmDiscard();
    static bool isReadable(const QString &path);
    /// Whether saving leaves clips as they are; until another file is opened.
    bool savesJointsOnly() const { return m_jointsOnly; }
    void setSavesJointsOnly(bool onOff);

public slots:
    /// An empty scene, once unsaved changes were asked about.
    bool newScene();
    bool closeFile();
    /// Opens the file again, once it was said what is lost.
    bool revert();
    bool openSampleAsking();
    void openWithDialog();
    void mergeWithDialog();
    bool save();
    bool saveAs();
    bool saveCopy();
    bool exportWithoutExtras();

signals:
    void pathChanged();
    /// The title, or what unsaved changes are counted from.
    void titleChanged();
    void savesJointsOnlyChanged(bool onOff);
    void opened();
    void messagePosted(const QString &message);

private:
    bool open(const QString &path, bool isSample);
    bool load(const QString &path, bool merge);
    void setFile(const QString &path, const SavedState &state, bool isSample,
                 const OpenedFile::Recovered *before = nullptr);
    bool writeAside(const QString &path, bool isExport);
    bool refuseOwnFile(const QString &path, const QString &title);
    void tellLosses(const QString &path, const QStringList &losses, bool isSave);
    /// Whether the scene's own file may be written; saves elsewhere where the user prefers that, with what came of it
    /// in `savedElsewhere`.
    bool mayReplace(const QString &path, bool *savedElsewhere);
    /// In the folder of the file: a name of its own, with what is put behind it.
    QString suggestion(const QString &behind) const;

    QPointer<RyScene> m_scene;
    QWidget *m_window;
    RecentFiles *m_recent;
    FileNotes *m_notes;
    FileDialogs m_dialogs;
    OpenedFile m_file;
    bool m_jointsOnly = false;
};
