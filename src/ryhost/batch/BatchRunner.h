#pragma once

#include "rycore/io/RyFigureFits.h"
#include "ryhost/batch/BatchArguments.h"
#include "ryhost/batch/BatchReport.h"

class RyDialogDriver;
class RyMainWindow;
struct RyDialogRecord;

/// Exit codes of the program.
enum class ExitCode { Done = 0, FileRefused = 1, WrongUse = 2, ActionRefused = 3, CannotWrite = 4, ScriptFailed = 5 };

/// Runs a batch: opens the file, then each verb in turn; stops at the first that fails, but still writes the reports
/// that were asked for. Nothing waits for a person: dialogs are filled and accepted, message boxes answered, by what
/// the verb says or by their own defaults. Messages and what the boxes said go to standard error.
class BatchRunner
{
public:
    explicit BatchRunner(RyMainWindow &window);
    ~BatchRunner();
    BatchRunner(const BatchRunner &) = delete;
    BatchRunner &operator=(const BatchRunner &) = delete;

    ExitCode run(const BatchArguments &arguments);

private:
    /// One driver takes all dialogs that open in the step.
    ExitCode runStep(const BatchStep &step);
    ExitCode open(const QString &path, bool merge);
    ExitCode select(const QString &names);
    ExitCode writeProperty(const QString &text, bool poseOnly);
    ExitCode showClip(const BatchStep &step);
    ExitCode undoOrRedo(bool redo);
    ExitCode save(const BatchStep &step);
    ExitCode screenshot(const BatchStep &step);
    ExitCode writeText(const QString &path, const QByteArray &text);
    ExitCode runScript(const QString &path);
    ExitCode runAction(const QString &className, const RyDialogDriver &driver);
    /// All but actions, which know the driver.
    ExitCode runVerb(const BatchStep &step);
    /// The joint editor, as in a window where a person would use its actions.
    void activateTool();
    void note(const RyFigureFits::Fit &fit);
    void note(const QString &during, const std::vector<RyDialogRecord> &boxes);
    ExitCode fail(ExitCode code, const QString &message);
    void say(const QString &message);
    void print(const QString &message);

    RyMainWindow &m_window;
    double m_unit = 0.0;
    bool m_merged = false;
    BatchEvents m_events;
};

/// The whole of `ryhost --batch ...`; `arguments` without the program's name. Needs a QApplication.
int runBatch(const QStringList &arguments);
