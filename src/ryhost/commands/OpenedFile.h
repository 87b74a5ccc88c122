#pragma once

#include "ryhost/commands/SavedState.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QPointer>
#include <QString>

#include <memory>
#include <utility>
#include <vector>

class RyScene;
class RySceneOrigin;

/// The file that the scene in the window is of, and how the two differ.
class OpenedFile
{
    Q_DECLARE_TR_FUNCTIONS(OpenedFile)
public:
    /// When a file was last written, and its size.
    using Stamp = std::pair<QDateTime, qint64>;
    static Stamp stampOf(const QString &path);

    /// Which file work that is brought back belongs to, and what was known of it.
    struct Recovered
    {
        QString path;
        bool isSample = false;
        bool jointsOnly = false;
        int mergedFiles = 0;
        Stamp stamp; // of before the crash: what another program has written since is not ours to replace unasked
    };

    explicit OpenedFile(RyScene *scene);

    /// The scene is that of this file now, as it is on the disk, or as it was `before` a crash.
    void take(const QString &path, const SavedState &state, bool isSample, const Recovered *before = nullptr);

    /// Empty for a scene without a file.
    const QString &path() const { return m_path; }
    /// Without the folders; empty for a scene without a file.
    QString name() const;
    /// Whether it is the figure that comes with the program.
    bool isSample() const { return m_isSample; }
    /// The path, unless it is that of the sample figure.
    QString ownPath() const { return m_isSample ? QString() : m_path; }
    /// Whether the path leads to this file, and there is one.
    bool isAt(const QString &path) const;
    /// As it was when it was opened or saved.
    const Stamp &stamp() const { return m_stamp; }
    /// Whether it is another one on the disk since.
    bool isWrittenSince() const { return stampOf(m_path) != m_stamp; }
    /// Whether saving writes it, without asking where.
    bool savesInPlace() const;

    const SavedState &savedState() const { return m_savedState; }
    bool hasEdits() const;
    /// What differs from the file, with since when; empty when nothing does.
    QString unsavedChanges() const;
    /// How many files were merged into the scene since it was opened or saved.
    int mergedFiles() const;

    // Why something cannot be done now, for the entry that would do it; empty when it can.
    QString whyNotSaved() const;
    QString whyNotClosed() const;
    QString whyNotReverted() const;

private:
    QPointer<RyScene> m_scene;
    QString m_path;
    bool m_isSample = false;
    SavedState m_savedState = SavedState::now(SavedState::Started);
    Stamp m_stamp;
    std::vector<std::weak_ptr<RySceneOrigin>> m_ownOrigins; // what the scene came from when it was opened or saved
    int m_mergedBefore = 0;                                 // into work that was brought back
};
