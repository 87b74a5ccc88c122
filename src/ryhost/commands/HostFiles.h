#pragma once

#include <QObject>
#include <QPointer>
#include <QStringList>

class QWidget;
class RyScene;

/// Opens and saves the scene for the window: dialogs, recent files, the question about unsaved changes, and messages
/// that name the file and the reason.
class HostFiles : public QObject
{
    Q_OBJECT
public:
    HostFiles(RyScene *scene, QWidget *window);

    /// Path of the file on screen; empty for a scene without one.
    const QString &path() const { return m_path; }
    /// Where the scene came from and how large its units are, for people.
    QString description() const;
    QStringList recentFiles() const;

    /// Replaces the scene without asking; false with a message on the screen when the file is refused.
    bool openPath(const QString &path);
    /// The figure that comes with the program, for who brings none; saving it asks where.
    bool openSample();
    /// Asks about unsaved changes first.
    bool openPathAsking(const QString &path);
    bool mergePath(const QString &path);
    bool savePath(const QString &path);
    /// False when the user would rather stay.
    bool confirmDiscard();
    static bool isReadable(const QString &path);
    /// Whether saving leaves clips as they are; until another file is opened.
    bool savesJointsOnly() const { return m_jointsOnly; }
    void setSavesJointsOnly(bool onOff);
    /// What there was to say about the file that was opened, merged or saved last.
    const QStringList &notes() const { return m_notes; }

public slots:
    void openWithDialog();
    void mergeWithDialog();
    bool save();
    bool saveAs();
    void clearRecent();
    /// All notes in a box.
    void showNotes();

signals:
    void pathChanged();
    void recentChanged();
    void savesJointsOnlyChanged(bool onOff);
    void notesChanged();
    void opened();
    void messagePosted(const QString &message);

private:
    bool open(const QString &path, bool isSample);
    bool load(const QString &path, bool merge);
    void setPath(const QString &path);
    static QString shortOf(const QString &what, const QStringList &notes);
    void noteMessages(const QString &path, const QStringList &notes);
    void remember(const QString &path);
    QString folder() const;

    QPointer<RyScene> m_scene;
    QWidget *m_window;
    QString m_path;
    QStringList m_notes;
    QString m_notedFile;
    bool m_isSample = false;
    bool m_jointsOnly = false;
};
