#pragma once

#include "ryhost/commands/FileDialogs.h"
#include "ryhost/commands/unsavedChanges.h"

#include <QDateTime>
#include <QObject>
#include <QPointer>
#include <QStringList>

#include <memory>
#include <utility>
#include <vector>

class QWidget;
class RecentFiles;
class RyScene;
class RySceneOrigin;

/// Opens, saves and leaves the scene for the window: which file it is, questions about unsaved changes, and messages
/// that name the file and the reason.
class HostFiles : public QObject
{
    Q_OBJECT
public:
    /// When a file was last written, and its size.
    using Stamp = std::pair<QDateTime, qint64>;

    HostFiles(RyScene *scene, QWidget *window);

    /// Path of the file on screen; empty for a scene without one.
    const QString &path() const { return m_path; }
    /// The file's name, with as much of its path as tells it from other recent ones, and how many files were merged
    /// into it since.
    QString title() const;
    /// Where the scene came from and how large its units are, for people.
    QString description() const;
    RecentFiles *recent() const { return m_recent; }
    /// Whether it is the figure that comes with the program.
    bool isSample() const { return m_isSample; }
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
    /// Which file work that is brought back belongs to, and what was known of it.
    struct Recovered
    {
        QString path;
        bool isSample = false;
        bool jointsOnly = false;
        int mergedFiles = 0;
        Stamp stamp; // of before the crash: what another program has written since is not ours to replace unasked
    };
    /// The scene holds unsaved work that was brought back after a crash.
    void takeRecovered(const Recovered &work, const QStringList &notes);
    /// False when the user would rather stay.
    bool confirmDiscard();
    static bool isReadable(const QString &path);
    /// Whether saving leaves clips as they are; until another file is opened.
    bool savesJointsOnly() const { return m_jointsOnly; }
    void setSavesJointsOnly(bool onOff);
    /// What there was to say about the file that was opened, merged or saved last.
    const QStringList &notes() const { return m_notes; }
    /// What differs from the file, with since when; empty when nothing does.
    QString unsavedChanges() const;
    const SavedState &savedState() const { return m_savedState; }
    /// How many files were merged into the scene since it was opened or saved.
    int mergedFiles() const;
    /// As the file was when it was opened or saved.
    const Stamp &stamp() const { return m_stamp; }
    static Stamp stampOf(const QString &path);
    /// Whether saving writes the scene's own file, without asking where.
    bool savesInPlace() const;

    // Why something cannot be done now, for the entry that would do it; empty when it can.
    QString whyNotSaved() const;
    QString whyNotClosed() const;
    QString whyNotReverted() const;

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
    /// All notes in a box.
    void showNotes();

signals:
    void pathChanged();
    /// The title, or what unsaved changes are counted from.
    void titleChanged();
    void savesJointsOnlyChanged(bool onOff);
    void notesChanged();
    void opened();
    void messagePosted(const QString &message);

private:
    bool open(const QString &path, bool isSample);
    bool load(const QString &path, bool merge);
    /// The scene is that of this file now, as it is on the disk.
    void setFile(const QString &path, const SavedState &state, bool isSample, const Recovered *before = nullptr);
    bool writeAside(const QString &path, bool isExport);
    bool refuseOwnFile(const QString &path, const QString &title);
    void tellLosses(const QString &path, const QStringList &losses, bool isSave);
    static QString shortOf(const QString &what, const QStringList &notes);
    void noteMessages(const QString &path, const QStringList &notes);
    /// Whether the scene's own file may be written; saves elsewhere where the user prefers that, with what came of it
    /// in `savedElsewhere`.
    bool mayReplace(const QString &path, bool *savedElsewhere);
    /// In the folder of the file: a name of its own, with what is put behind it.
    QString suggestion(const QString &behind) const;
    QString ownPath() const { return m_isSample ? QString() : m_path; }

    QPointer<RyScene> m_scene;
    QWidget *m_window;
    RecentFiles *m_recent;
    FileDialogs m_dialogs;
    QString m_path;
    QStringList m_notes;
    QString m_notedFile;
    SavedState m_savedState = SavedState::now(SavedState::Started);
    std::vector<std::weak_ptr<RySceneOrigin>> m_ownOrigins; // what the scene came from when it was opened or saved
    Stamp m_stamp;                                          // of the file then
    int m_mergedBefore = 0;                                 // into work that was brought back
    bool m_isSample = false;
    bool m_jointsOnly = false;
};
