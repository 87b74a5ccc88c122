#pragma once

#include "ryhost/batch/BatchStep.h"
#include "ryhost/batch/ExitCode.h"

#include <QByteArray>
#include <QJsonObject>

class BatchLog;
class BatchStreams;
class RyMainWindow;

/// What verbs of a batch run write: scenes, pictures, dumps and reports, to files or to standard output.
class BatchOutput
{
public:
    /// `asJson`: a report to standard output becomes a part of the document about all files.
    BatchOutput(RyMainWindow &window, BatchStreams &streams, BatchLog &log, bool asJson)
        : m_window(window), m_streams(streams), m_log(log), m_asJson(asJson)
    {}

    ExitCode save(const BatchStep &step);
    ExitCode saveTo(const BatchStep &step);
    ExitCode screenshot(const BatchStep &step);
    ExitCode dump(const BatchStep &step);
    ExitCode report(const BatchStep &step);

    /// For the document about all files; empty where none was asked for.
    const QJsonObject &kept() const { return m_kept; }

private:
    bool saveScene(const QString &path, bool jointsOnly, QStringList *losses, QString *error);
    /// To the file that a step names, or to standard output.
    ExitCode writeBytes(const BatchStep &step, const QByteArray &bytes);

    RyMainWindow &m_window;
    BatchStreams &m_streams;
    BatchLog &m_log;
    const bool m_asJson;
    QJsonObject m_kept;
};
