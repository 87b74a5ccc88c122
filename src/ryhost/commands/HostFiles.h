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

public slots:
    void openWithDialog();
    void mergeWithDialog();
    bool save();
    bool saveAs();
    void clearRecent();

signals:
    void pathChanged();
    void recentChanged();
    void opened();
    void messagePosted(const QString &message);

private:
    bool open(const QString &path, bool isSample);
    bool load(const QString &path, bool merge);
    void setPath(const QString &path);
    void remember(const QString &path);
    QString folder() const;

    QPointer<RyScene> m_scene;
    QWidget *m_window;
    QString m_path;
    bool m_isSample = false;
};
