#pragma once

#include "support/RyEndedProgram.h"

#include <QJsonObject>
#include <QStringList>
#include <QTemporaryDir>

/// The program, run as a person at a shell would, without a display.
class RyBatchRun
{
public:
    struct Result : RyEndedProgram
    {
        QJsonObject json() const;
        /// What the report says of the first action that was to run.
        QJsonObject firstRun() const;
        bool says(const char *words) const { return err.contains(words); }
    };

    static QString sample();
    /// A path in the folder of this run.
    QString file(const QString &name) const { return m_folder.filePath(name); }
    /// Writes a file there and returns its path.
    QString write(const QString &name, const QByteArray &content) const;
    /// Instead of the folder beside the program.
    void setPlugins(const QString &folder) { m_plugins = folder; }

    /// Instead of the folder of scripts and samples in the source tree.
    void setHome(const QString &folder) { m_home = folder; }
    /// No file may grow beyond that, as if the disk were full; a multiple of 512.
    void setLargestFile(int bytes) { m_largestFile = bytes; }

    /// `input` comes by standard input, which ends with it.
    Result run(const QStringList &arguments, const QByteArray &input = QByteArray()) const;
    /// With the sample figure.
    Result batch(const QStringList &verbs) const
    {
        return run(QStringList{QStringLiteral("--batch"), sample()} + verbs);
    }

private:
    QTemporaryDir m_folder;
    QString m_plugins;
    QString m_home;
    int m_largestFile = 0; // any
};
