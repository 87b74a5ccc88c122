#include "ryhost/batch/BatchRunner.h"

#include "rycore/app/RyMainWindow.h"
#include "rycore/automation/RyActionRunner.h"
#include "rycore/automation/RyDialogDriver.h"
#include "rycore/automation/RyDialogVerdict.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/base/RyMessageLog.h"
#include "rycore/io/RySafeFile.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/clips/RyClipLookup.h"
#include "rycore/scene/clips/RyClipPlayer.h"
#include "rycore/scene/node/RyNodeLookup.h"
#include "rycore/script/RyScript.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "rycore/undo/restore/RyRestoreSpan.h"
#include "rycore/viewport/Ry3DViewport.h"
#include "rycore/viewport/RyViewportMgr.h"
#include "ryhost/batch/BatchChecks.h"
#include "ryhost/batch/BatchDocument.h"
#include "ryhost/batch/BatchStreams.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QDir>
#include <QImage>
#include <QImageWriter>
#include <QJsonDocument>

#include <cstdio>

static constexpr int MostPoints = 20;

static ExitCode exitCodeOf(RyOutcome outcome)
{
    if (ryIsWrongUse(outcome))
        return ExitCode::WrongUse;
    return outcome == RyOutcome::Refused ? ExitCode::ActionRefused : ExitCode::Done;
}

BatchRunner::BatchRunner(RyMainWindow &window, const BatchArguments &arguments, BatchStreams &streams)
    : m_window(window), m_arguments(arguments), m_streams(streams)
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

void BatchRunner::print(const QString &message)
{
    m_progress.clear();
    const bool isNamed = m_arguments.files.size() == 1 || message.contains(m_file);
    std::fprintf(stderr, "%s\n",
                 (isNamed ? message : m_file + QStringLiteral(": ") + message).toLocal8Bit().constData());
}

void BatchRunner::say(const QString &message)
{
    note(m_streams.named(message));
    print(m_streams.named(message));
}

void BatchRunner::note(const QString &message)
{
    m_events.messages.append(message);
    if (m_listener)
        m_listener({{QStringLiteral("message"), message}});
}

ExitCode BatchRunner::fail(ExitCode code, const QString &message)
{
    if (m_error.isEmpty())
        m_error = m_streams.named(message);
    say(message);
    return code;
}

void BatchRunner::begin(const QString &verb, int number)
{
    m_verb = verb;
    if (m_listener)
        m_listener({{QStringLiteral("verb"), verb}});
    const QString place = m_arguments.files.size() > 1
                              ? QStringLiteral("[%1/%2] ").arg(m_number + 1).arg(m_arguments.files.size())
                              : QString();
    m_progress.show(QStringLiteral("%1%2  %3/%4 %5")
                        .arg(place, m_file)
                        .arg(number)
                        .arg(m_arguments.steps.size())
                        .arg(m_streams.named(verb)));
}

ExitCode BatchRunner::run(int number, const Listener &listener)
{
    m_number = number;
    m_file = m_arguments.files.at(number);
    m_listener = listener;
    // What the log says is printed here, so that it does not run into the line that shows the progress.
    RyMessageLog::global().setEcho(false);
    const auto listening = QObject::connect(&RyMessageLog::global(), &RyMessageLog::messageAdded,
                                            [this](const QString &message, bool isWarning) {
                                                note(message);
                                                print(isWarning ? QStringLiteral("Warning: ") + message : message);
                                            });
    const ExitCode code = runSteps(m_file);
    QObject::disconnect(listening);
    RyMessageLog::global().setEcho(true);
    m_progress.clear();
    if (m_listener) {
        QJsonObject entry = batchEntry(m_file, int(code), m_verb, m_error, m_events);
        if (!m_report.isEmpty())
            entry[QStringLiteral("report")] = m_report;
        m_listener({{QStringLiteral("entry"), entry}});
    }
    return code;
}

ExitCode BatchRunner::runSteps(const QString &file)
{
    const QList<BatchStep> &steps = m_arguments.steps;
    // A unit that is said before anything else belongs to the file itself.
    int next = 0;
    for (; next < steps.size() && steps.at(next).verb == BatchStep::Unit; ++next)
        m_unit = steps.at(next).number;
    begin(QStringLiteral("--batch ") + file, next);
    ExitCode code = open(file, m_arguments.inputFormat, false);
    m_unit = 0.0;
    for (; next < steps.size() && code == ExitCode::Done; ++next) {
        begin(steps.at(next).text(), next + 1);
        code = runStep(steps.at(next));
    }
    for (; next < steps.size(); ++next) {
        if (steps.at(next).verb == BatchStep::Report)
            runStep(steps.at(next));
    }
    return code;
}

void BatchRunner::note(const QString &during, const std::vector<RyDialogRecord> &boxes)
{
    for (const RyDialogRecord &box : boxes) {
        print(box.describe());
        QVariantMap entry = box.toMap();
        entry[QStringLiteral("during")] = during;
        m_events.boxes.append(entry);
    }
}

void BatchRunner::activateTool()
{
    RyViewportMgr &manager = *m_window.getViewportMgr();
    RyViewTool *tool = manager.findTool(QStringLiteral("RyJointEditorTool"));
    if (tool && manager.getActiveTool() != tool)
        manager.setActiveTool(tool);
    // It takes a new selection by an event.
    QCoreApplication::sendPostedEvents();
}

ExitCode BatchRunner::runAction(const QString &className, const RyDialogDriver &driver)
{
    activateTool();
    const RyActionResult result = RyActionRunner(m_window.getActionMgr()).run(className, driver);
    note(className, driver.records());
    for (const QString &message : result.notes)
        say(QStringLiteral("--run %1: %2").arg(className, message));
    QVariantMap entry = result.toMap();
    entry[QStringLiteral("action")] = className;
    m_events.runs.append(entry);
    const ExitCode code = exitCodeOf(result.outcome);
    if (code != ExitCode::Done)
        return fail(code, QStringLiteral("--run %1: %2").arg(className, result.reason));
    if (result.outcome == RyOutcome::Cancelled)
        say(QStringLiteral("--run %1: cancelled. %2").arg(className, result.reason));
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
    note(step.value, driver.records());
    const RyDialogVerdict verdict = ryJudgeDialogs(driver);
    for (const QString &message : verdict.notes)
        say(QStringLiteral("%1: %2").arg(step.value, message));
    const ExitCode judged = exitCodeOf(verdict.outcome);
    if (judged != ExitCode::Done)
        fail(judged, QStringLiteral("%1: %2").arg(step.value, verdict.reason));
    return code != ExitCode::Done ? code : judged;
}

ExitCode BatchRunner::runVerb(const BatchStep &step)
{
    switch (step.verb) {
    case BatchStep::Unit:
        m_unit = step.number;
        return ExitCode::Done;
    case BatchStep::Merge:
        return open(step.value, step.format, true);
    case BatchStep::Select:
        return select(step.value);
    case BatchStep::Property:
        return writeProperty(step.value, false);
    case BatchStep::Pose:
        return writeProperty(step.value, true);
    case BatchStep::Clip:
        return showClip(step);
    case BatchStep::Undo:
        return undoOrRedo(false);
    case BatchStep::Redo:
        return undoOrRedo(true);
    case BatchStep::Save:
        return save(step);
    case BatchStep::SaveTo:
        return saveTo(step);
    case BatchStep::Screenshot:
        return screenshot(step);
    case BatchStep::Dump:
        return writeBytes(step, rySceneDump(*m_window.getScene()).toUtf8());
    case BatchStep::Report:
        return report(step);
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
        return fail(ExitCode::FileRefused, error);
    QStringList messages;
    RySceneFile::Options options;
    options.unit = m_unit;
    options.merge = merge;
    const bool opened = RySceneFile::open(m_window.getScene(), path, options, &error, &messages);
    for (const QString &message : qAsConst(messages))
        say(message);
    if (opened && merge)
        m_merged = true;
    return opened ? ExitCode::Done : fail(ExitCode::FileRefused, error);
}

ExitCode BatchRunner::select(const QString &names)
{
    RyScene &scene = *m_window.getScene();
    std::vector<RyNode *> nodes;
    QString error;
    if (names != QLatin1String("none")) {
        // A name that holds a comma is tried as it stands first.
        if (RyNode *whole = RyNodeLookup::findNode(scene, names, &error)) {
            nodes.push_back(whole);
        } else if (!names.contains(QLatin1Char(','))) {
            return fail(ExitCode::WrongUse, QStringLiteral("--select: ") + error);
        } else {
            for (const QString &name : names.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
                RyNode *node = RyNodeLookup::findNode(scene, name.trimmed(), &error);
                if (!node)
                    return fail(ExitCode::WrongUse, QStringLiteral("--select: ") + error);
                nodes.push_back(node);
            }
            if (nodes.empty())
                return fail(ExitCode::WrongUse,
                            QStringLiteral("--select: \"%1\" names no node; \"none\" selects none").arg(names));
        }
    }
    scene.setSelection(nodes);
    return ExitCode::Done;
}

ExitCode BatchRunner::writeProperty(const QString &text, bool poseOnly)
{
    const QString verb = poseOnly ? QStringLiteral("--pose: ") : QStringLiteral("--property: ");
    QString error;
    float value = 0.0f;
    RyFloatProperty *property = RyNodeLookup::findProperty(*m_window.getScene(), text, poseOnly, &value, &error);
    if (!property)
        return fail(ExitCode::WrongUse, verb + error);
    if (!RyNodeLookup::canBecome(*property, value, &error))
        return fail(ExitCode::WrongUse, verb + error);
    RyUndoStackHold hold;
    property->adjustValue(value);
    hold.accept(QStringLiteral("Change %1").arg(property->getLabel()));
    return ExitCode::Done;
}

ExitCode BatchRunner::showClip(const BatchStep &step)
{
    RyScene &scene = *m_window.getScene();
    QString error;
    const auto clip = step.value == QLatin1String("none") ? nullptr : RyClipLookup::findClip(scene, step.value, &error);
    if (!error.isEmpty())
        return fail(ExitCode::WrongUse, QStringLiteral("--clip: ") + error);
    scene.getClipPlayer()->show(clip, clip ? step.time.value_or(clip->start()) : 0.0);
    return ExitCode::Done;
}

ExitCode BatchRunner::undoOrRedo(bool redo)
{
    RyUndoStack &stack = *ryUndoStack();
    if (redo && !stack.canRedo())
        return fail(ExitCode::WrongUse, QStringLiteral("--redo: there is nothing to redo"));
    if (!redo && !stack.canUndo()) {
        return fail(ExitCode::WrongUse, m_merged
                                            ? QStringLiteral("--undo: there is nothing to undo; --merge makes no step")
                                            : QStringLiteral("--undo: there is nothing to undo"));
    }
    redo ? stack.redo() : stack.undo();
    return ExitCode::Done;
}

void BatchRunner::note(const RyFigureFits::Fit &fit)
{
    m_events.fits.append(QVariantMap{{QStringLiteral("figure"), fit.figure},
                                     {QStringLiteral("plain"), fit.isPlain},
                                     {QStringLiteral("poses"), fit.report.poses},
                                     {QStringLiteral("rms"), fit.report.rms},
                                     {QStringLiteral("rmsPartly"), fit.report.rmsPartly},
                                     {QStringLiteral("max"), fit.report.max},
                                     {QStringLiteral("bulges"), fit.report.bulges},
                                     {QStringLiteral("bone"), fit.report.bone},
                                     {QStringLiteral("pose"), fit.report.pose}});
}

bool BatchRunner::saveScene(const QString &path, bool jointsOnly, QStringList *losses, QString *error)
{
    RySceneFile::SaveOptions options;
    options.jointsOnly = jointsOnly;
    QStringList messages;
    std::vector<RyFigureFits::Fit> fits;
    options.fits = &fits;
    const bool saved = RySceneFile::save(m_window.getScene(), path, options, error, &messages, losses);
    for (const RyFigureFits::Fit &fit : fits)
        note(fit);
    for (const QString &message : qAsConst(messages))
        say(message);
    if (saved)
        m_events.written.append(m_streams.named(path));
    return saved;
}

ExitCode BatchRunner::save(const BatchStep &step)
{
    QString error;
    QStringList losses;
    const bool toStream = step.writesStandardOutput();
    const QString format = step.format.isEmpty() ? QStringLiteral("glb") : step.format;
    const QString path = toStream ? m_streams.outputFile(format, &error) : step.value;
    if ((toStream && path.isEmpty()) || !saveScene(path, step.jointsOnly, &losses, &error) ||
        (toStream && !m_streams.sendFile(path, &error)))
        return fail(ExitCode::CannotWrite, error);
    if (losses.isEmpty())
        return ExitCode::Done;
    return fail(
        ExitCode::CannotWrite,
        QStringLiteral("%1 was written, but not all of the scene: %2").arg(path, losses.join(QStringLiteral("; "))));
}

ExitCode BatchRunner::saveTo(const BatchStep &step)
{
    const QDir folder(step.value);
    if (!folder.mkpath(QStringLiteral("."))) {
        return fail(
            ExitCode::CannotWrite,
            QStringLiteral("--save-to: the folder %1 is not there and cannot be made; a file may have its name, "
                           "or the folder above be write-protected")
                .arg(step.value));
    }
    BatchStep named = step;
    named.verb = BatchStep::Save;
    named.value = folder.filePath(batchTargetName(m_file));
    return save(named);
}

ExitCode BatchRunner::screenshot(const BatchStep &step)
{
    activateTool();
    Ry3DViewport viewport(m_window.getViewportMgr());
    viewport.resize(step.size);
    viewport.setStandardView(step.view == QLatin1String("front")  ? Ry3DViewport::StandardView::Front
                             : step.view == QLatin1String("side") ? Ry3DViewport::StandardView::Side
                             : step.view == QLatin1String("top")  ? Ry3DViewport::StandardView::Top
                                                                  : Ry3DViewport::StandardView::Perspective);
    viewport.frameNodes(false);
    const QImage picture = viewport.grabPicture(step.size.width(), step.size.height());
    if (picture.isNull())
        return fail(ExitCode::CannotWrite,
                    QStringLiteral("%1: no picture could be drawn on this machine").arg(step.value));
    QByteArray bytes;
    QBuffer buffer(&bytes);
    QImageWriter writer(&buffer, "png");
    if (!writer.write(picture))
        return fail(ExitCode::CannotWrite, QStringLiteral("%1: %2").arg(step.value, writer.errorString()));
    return writeBytes(step, bytes);
}

ExitCode BatchRunner::writeBytes(const BatchStep &step, const QByteArray &bytes)
{
    QString error;
    const bool toStream = step.writesStandardOutput();
    if (!(toStream ? m_streams.write(bytes, &error) : RySafeFile::write(step.value, bytes, &error)))
        return fail(ExitCode::CannotWrite, error);
    m_events.written.append(toStream ? QStringLiteral("standard output") : step.value);
    return ExitCode::Done;
}

ExitCode BatchRunner::report(const BatchStep &step)
{
    QJsonObject report = batchReport(*m_window.getScene(), m_events);
    if (!m_arguments.asJson || !step.writesStandardOutput())
        return writeBytes(step, QJsonDocument(report).toJson());
    // Its events stand in the document already.
    for (const char *key : {"messages", "runs", "boxes", "fits"})
        report.remove(QLatin1String(key));
    m_report = report;
    return ExitCode::Done;
}

ExitCode BatchRunner::runScript(const QString &name)
{
    QString error;
    const QString path = name == QLatin1String("-") ? m_streams.readScript(&error) : name;
    if (path.isEmpty())
        return fail(ExitCode::ScriptFailed, error);
    activateTool();
    RyScript script{QString()};
    if (!script.loadFromFile(path, true))
        return fail(ExitCode::ScriptFailed,
                    QStringLiteral("%1: the script cannot be read: %2").arg(path, script.getError()));
    const RyRestoreSpan span(RyRestoreSpan::Scope::Work, QStringLiteral("Run %1").arg(script.getName()));
    return script.execute()
               ? ExitCode::Done
               : fail(ExitCode::ScriptFailed, QStringLiteral("%1: the script ended with an error").arg(path));
}
