#pragma once

#include "rycore/io/RyFigureFits.h"
#include "ryhost/batch/BatchProgress.h"
#include "ryhost/batch/BatchReport.h"
#include "ryhost/batch/ExitCode.h"

#include <QJsonObject>
#include <QMetaObject>

#include <functional>

class BatchArguments;
class BatchStreams;
struct RyDialogRecord;

/// What a run with one file tells: on standard error as it happens, to who listens, and in the end all of it. While it
/// lives, the log of the application speaks through it alone.
class BatchLog
{
public:
    /// Hears what happens while it happens, since a run may not live to tell: `verb` as each begins, each `message`, at
    /// the end the `entry` of the file.
    using Listener = std::function<void(const QJsonObject &)>;

    /// `number` of the file in the arguments, from 0.
    BatchLog(const BatchArguments &arguments, const BatchStreams &streams, int number, Listener listener);
    ~BatchLog();
    BatchLog(const BatchLog &) = delete;
    BatchLog &operator=(const BatchLog &) = delete;

    const QString &file() const { return m_file; }
    const BatchEvents &events() const { return m_events; }

    /// A verb begins, the one of that number.
    void begin(const QString &verb, int number);
    void say(const QString &message);
    /// Says it and gives the code; what failed first is the run's error.
    ExitCode fail(ExitCode code, const QString &message);
    void addRun(const QVariantMap &run) { m_events.runs.append(run); }
    void addWritten(const QString &file) { m_events.written.append(file); }
    void addFit(const RyFigureFits::Fit &fit);
    void addBoxes(const QString &during, const std::vector<RyDialogRecord> &boxes);
    /// Nothing comes after it. `report` is empty where none was asked for.
    void finish(ExitCode code, const QJsonObject &report);

private:
    void note(const QString &message);
    void print(const QString &message);

    const BatchArguments &m_arguments;
    const BatchStreams &m_streams;
    const QString m_file;
    const int m_number;
    const Listener m_listener;
    QMetaObject::Connection m_listening;
    BatchProgress m_progress;
    BatchEvents m_events;
    QString m_verb;  // that is running
    QString m_error; // of the first that failed
};
