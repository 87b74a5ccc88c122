#pragma once

#include "ryhost/commands/HostFiles.h"
#include "ryhost/recovery/Autosave.h"

#include <QTemporaryDir>

#include <memory>

/// The scene of the program with settings and a place for temporary files of its own, and its unsaved work kept. Tests
/// inherit from it.
class AutosaveStage
{
protected:
    AutosaveStage();
    ~AutosaveStage();

    /// Without the keeper of unsaved work; false when something could not be had.
    [[nodiscard]] bool open(const QString &file = QString());
    void start();
    /// The program as it starts: an empty scene, and what was left behind still lies there.
    void reset();
    /// Ends in order, as far as the disk is concerned.
    void close();

    QString path(const QString &name) const { return m_folder->filePath(name); }
    QString settings() const { return path(QStringLiteral("settings")); }
    /// Those with a snapshot, wherever they may be, of running programs too.
    QStringList kept() const;
    bool isKept() const { return !kept().isEmpty(); }
    /// When the latest snapshot was written; 0 without one.
    qint64 keptAt() const;
    /// One undo step.
    static void edit();
    static QString dump();
    static QString sample(const char *name);

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<HostFiles> m_files;
    std::unique_ptr<Autosave> m_autosave;
    QStringList m_messages;

private:
    QByteArray m_temporary;
};
