#pragma once

#include "rycore/io/RyFigureFits.h"
#include "ryhost/batch/BatchArguments.h"
#include "ryhost/batch/BatchProgress.h"
#include "ryhost/batch/BatchReport.h"
#include "ryhost/batch/ExitCode.h"

#include <QJsonObject>

#include <functional>

class BatchStreams;
class RyDialogDriver;
class RyMainWindow;
struct RyDialogRecord;

/// Runs a batch with one of its files: opens it, then each verb in turn; stops at the first that fails, but still
/// writes the reports that were asked for. Nothing waits for a person: dialogs are filled and accepted, message boxes
/// answered, by what the verb says or by their own defaults. Messages and what the boxes said go to standard error.
class BatchRunner
{
public:
    /// Hears what happens while it happens, since a run may not live to tell: `verb` as each begins, each `message`, at
    /// the end the `entry` of the file.
    using Listener = std::function<void(const QJsonObject &)>;

    BatchRunner(RyMainWindow &window, const BatchArguments &arguments, BatchStreams &streams);
    ~BatchRunner();
    BatchRunner(const BatchRunner &) = delete;
    BatchRunner &operator=(const BatchRunner &) = delete;

    /// `number` of the file in the arguments, from 0.
    ExitCode run(int number, const Listener &listener = {});

private:
    ExitCode runSteps(const QString &file);
    void begin(const QString &verb, int number);
    /// One driver takes all dialogs that open in the step.
    ExitCode runStep(const BatchStep &step);
    ExitCode open(const QString &path, const QString &format, bool merge);
    ExitCode select(const QString &names);
    ExitCode writeProperty(const QString &text, bool poseOnly);
    ExitCode showClip(const BatchStep &step);
    ExitCode undoOrRedo(bool redo);
    ExitCode save(const BatchStep &step);
    ExitCode saveTo(const BatchStep &step);
    /// The file that a step writes, or standard output.
    ExitCode writeBytes(const BatchStep &step, const QByteArray &bytes);
    ExitCode report(const BatchStep &step);
    bool saveScene(const QString &path, bool jointsOnly, QStringList *losses, QString *error);
    ExitCode screenshot(const BatchStep &step);
    ExitCode runScript(const QString &path);
    ExitCode runAction(const QString &className, const RyDialogDriver &driver);
    /// All but actions, which know the driver.
    ExitCode runVerb(const BatchStep &step);
    /// The joint editor, as in a window where a person would use its actions.
    void activateTool();
    void note(const QString &message);
    void note(const RyFigureFits::Fit &fit);
    void note(const QString &during, const std::vector<RyDialogRecord> &boxes);
    ExitCode fail(ExitCode code, const QString &message);
    void say(const QString &message);
    void print(const QString &message);

    RyMainWindow &m_window;
    const BatchArguments &m_arguments;
    BatchStreams &m_streams;
    Listener m_listener;
    BatchProgress m_progress;
    QString m_file;
    int m_number = 0;
    QString m_verb;  // that is running
    QString m_error; // of the first that failed
    QJsonObject m_report;
    double m_unit = 0.0;
    bool m_merged = false;
    BatchEvents m_events;
};
