#include "ryhost/batch/BatchRunner.h"

#include "rycore/app/RyMainWindow.h"
#include "rycore/automation/RyActionRunner.h"
#include "rycore/automation/RyDialogDriver.h"
#include "rycore/automation/RyDialogVerdict.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyScene.h"
#include "rycore/script/RyScript.h"
#include "rycore/undo/restore/RyRestoreSpan.h"
#include "ryhost/batch/BatchEdits.h"
#include "ryhost/batch/BatchStreams.h"
#include "ryhost/batch/activateJointEditor.h"

#include <QCoreApplication>

static constexpr int MostPoints = 20;

static ExitCode exitCodeOf(RyOutcome outcome)
{
    if (ryIsWrongUse(outcome))
        return ExitCode::WrongUse;
    return outcome == RyOutcome::Refused ? ExitCode::ActionRefused : ExitCode::Done;
}

BatchRunner::BatchRunner(RyMainWindow &window, const BatchArguments &arguments, BatchStreams &streams, int number,
                         const BatchLog::Listener &listener)
    : m_window(window), m_arguments(arguments), m_streams(streams), m_log(arguments, streams, number, listener),
      m_output(window, streams, m_log, arguments.asJson)
{
    // For scripts, which can go back to them.
    ryRestorePoints()->setMost(MostPoints);
}

BatchRunner::~BatchRunner()
{
    if (RyRestorePoints *points = ryRestorePoints()) {
        points->clear();
        points->setMost(0);
    }
}

ExitCode BatchRunner::run()
{
    const ExitCode code = runSteps(m_log.file());
    m_log.finish(code, m_output.kept());
    return code;
}

ExitCode BatchRunner::runSteps(const QString &file)
{
    const QList<BatchStep> &steps = m_arguments.steps;
    // A unit that is said before anything else belongs to the file itself.
    int next = 0;
    for (; next < steps.size() && steps.at(next).verb == BatchStep::Unit; ++next)
        m_unit = steps.at(next).number;
    m_log.begin(QStringLiteral("--batch ") + file, next);
    ExitCode code = open(file, m_arguments.inputFormat, false);
    m_unit = 0.0;
    for (; next < steps.size() && code == ExitCode::Done; ++next) {
        m_log.begin(steps.at(next).text(), next + 1);
        code = runStep(steps.at(next));
    }
    for (; next < steps.size(); ++next) {
        if (steps.at(next).verb == BatchStep::Report)
            runStep(steps.at(next));
    }
    return code;
}

ExitCode BatchRunner::runAction(const QString &className, const RyDialogDriver &driver)
{
    activateJointEditor(m_window);
    const RyActionResult result = RyActionRunner(m_window.getActionMgr()).run(className, driver);
    m_log.addBoxes(className, driver.records());
    for (const QString &message : result.notes)
        m_log.say(QStringLiteral("--run %1: %2").arg(className, message));
    QVariantMap entry = result.toMap();
    entry[QStringLiteral("action")] = className;
    m_log.addRun(entry);
    const ExitCode code = exitCodeOf(result.outcome);
    if (code != ExitCode::Done)
        return m_log.fail(code, QStringLiteral("--run %1: %2").arg(className, result.reason));
    if (result.outcome == RyOutcome::Cancelled)
        m_log.say(QStringLiteral("--run %1: cancelled. %2").arg(className, result.reason));
    return ExitCode::Done;
}

ExitCode BatchRunner::runStep(const BatchStep &step)
{
    RyDialogDriver driver;
    for (const auto &[name, value] : step.fields)
        driver.setField(name, value);
    for (const auto &[title, button] : step.answers)
        driver.setAnswer(title, button);
    if (step.verb == BatchStep::Run)
        return runAction(step.value, driver);
    const ExitCode code = runVerb(step);
    // There is no loop that would let the tool take a new selection before the next verb.
    QCoreApplication::sendPostedEvents();
    m_log.addBoxes(step.value, driver.records());
    const RyDialogVerdict verdict = ryJudgeDialogs(driver);
    for (const QString &message : verdict.notes)
        m_log.say(QStringLiteral("%1: %2").arg(step.value, message));
    const ExitCode judged = exitCodeOf(verdict.outcome);
    if (judged != ExitCode::Done)
        m_log.fail(judged, QStringLiteral("%1: %2").arg(step.value, verdict.reason));
    return code != ExitCode::Done ? code : judged;
}

ExitCode BatchRunner::edited(bool done, const QString &error)
{
    return done ? ExitCode::Done : m_log.fail(ExitCode::WrongUse, error);
}

ExitCode BatchRunner::runVerb(const BatchStep &step)
{
    RyScene &scene = *m_window.getScene();
    QString error;
    switch (step.verb) {
    case BatchStep::Unit:
        m_unit = step.number;
        return ExitCode::Done;
    case BatchStep::Merge:
        return open(step.value, step.format, true);
    case BatchStep::Select:
        return edited(BatchEdits::select(scene, step.value, &error), error);
    case BatchStep::Property:
    case BatchStep::Pose:
        return edited(BatchEdits::writeValue(scene, step, &error), error);
    case BatchStep::Clip:
        return edited(BatchEdits::showClip(scene, step, &error), error);
    case BatchStep::Undo:
        return edited(BatchEdits::undo(m_merged, &error), error);
    case BatchStep::Redo:
        return edited(BatchEdits::redo(&error), error);
    case BatchStep::Save:
        return m_output.save(step);
    case BatchStep::SaveTo:
        return m_output.saveTo(step);
    case BatchStep::Screenshot:
        return m_output.screenshot(step);
    case BatchStep::Dump:
        return m_output.dump(step);
    case BatchStep::Report:
        return m_output.report(step);
    case BatchStep::Script:
        return runScript(step.value);
    case BatchStep::Run:
        break;
    }
    return ExitCode::WrongUse;
}

ExitCode BatchRunner::open(const QString &name, const QString &format, bool merge)
{
    QString error;
    const QString path = name == QLatin1String("-") ? m_streams.readInput(format, &error) : name;
    if (path.isEmpty())
        return m_log.fail(ExitCode::FileRefused, error);
    QStringList messages;
    RySceneFile::Options options;
    options.unit = m_unit;
    options.merge = merge;
    const bool opened = RySceneFile::open(m_window.getScene(), path, options, &error, &messages);
    for (const QString &message : qAsConst(messages))
        m_log.say(message);
    if (opened && merge)
        m_merged = true;
    return opened ? ExitCode::Done : m_log.fail(ExitCode::FileRefused, error);
}

ExitCode BatchRunner::runScript(const QString &name)
{
    QString error;
    const QString path = name == QLatin1String("-") ? m_streams.readScript(&error) : name;
    if (path.isEmpty())
        return m_log.fail(ExitCode::ScriptFailed, error);
    activateJointEditor(m_window);
    RyScript script{QString()};
    if (!script.loadFromFile(path, true))
        return m_log.fail(ExitCode::ScriptFailed,
                          QStringLiteral("%1: the script cannot be read: %2").arg(path, script.getError()));
    const RyRestoreSpan span(RyRestoreSpan::Scope::Work, QStringLiteral("Run %1").arg(script.getName()));
    return script.execute()
               ? ExitCode::Done
               : m_log.fail(ExitCode::ScriptFailed, QStringLiteral("%1: the script ended with an error").arg(path));
}
