#pragma once

#include "ryhost/batch/BatchArguments.h"
#include "ryhost/batch/BatchLog.h"
#include "ryhost/batch/BatchOutput.h"
#include "ryhost/batch/ExitCode.h"

class BatchStreams;
class RyDialogDriver;
class RyMainWindow;

/// Runs a batch with one of its files: opens it, then each verb in turn; stops at the first that fails, but still
/// writes the reports that were asked for. Nothing waits for a person: dialogs are filled and accepted, message boxes
/// answered, by what the verb says or by their own defaults. Messages and what the boxes said go to standard error.
class BatchRunner
{
public:
    /// `number` of the file in the arguments, from 0.
    BatchRunner(RyMainWindow &window, const BatchArguments &arguments, BatchStreams &streams, int number,
                const BatchLog::Listener &listener);
    ~BatchRunner();
    BatchRunner(const BatchRunner &) = delete;
    BatchRunner &operator=(const BatchRunner &) = delete;

    ExitCode run();

private:
    ExitCode runSteps(const QString &file);
    /// One driver takes all dialogs that open in the step.
    ExitCode runStep(const BatchStep &step);
    /// All but actions, which know the driver.
    ExitCode runVerb(const BatchStep &step);
    ExitCode open(const QString &path, const QString &format, bool merge);
    ExitCode runScript(const QString &path);
    ExitCode runAction(const QString &className, const RyDialogDriver &driver);
    ExitCode edited(bool done, const QString &error);

    RyMainWindow &m_window;
    const BatchArguments &m_arguments;
    BatchStreams &m_streams;
    BatchLog m_log;
    BatchOutput m_output;
    double m_unit = 0.0; // of the file that is read next; 0 for the one it says
    bool m_merged = false;
};
