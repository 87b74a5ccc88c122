#include "ryhost/batch/BatchLog.h"

#include "rycore/automation/RyDialogRecord.h"
#include "rycore/base/RyMessageLog.h"
#include "ryhost/batch/BatchArguments.h"
#include "ryhost/batch/BatchDocument.h"
#include "ryhost/batch/BatchStreams.h"

#include <cstdio>

BatchLog::BatchLog(const BatchArguments &arguments, const BatchStreams &streams, int number, Listener listener)
    : m_arguments(arguments), m_streams(streams), m_file(arguments.files.at(number)), m_number(number),
      m_listener(std::move(listener))
{
    // What the log says is printed here, so that it does not run into the line that shows the progress.
    RyMessageLog::global().setEcho(false);
    m_listening = QObject::connect(&RyMessageLog::global(), &RyMessageLog::messageAdded,
                                   [this](const QString &message, bool isWarning) {
                                       note(message);
                                       print(isWarning ? QStringLiteral("Warning: ") + message : message);
                                   });
}

BatchLog::~BatchLog()
{
    QObject::disconnect(m_listening);
    RyMessageLog::global().setEcho(true);
}

void BatchLog::print(const QString &message)
{
    m_progress.clear();
    const bool isNamed = m_arguments.files.size() == 1 || message.contains(m_file);
    std::fprintf(stderr, "%s\n",
                 (isNamed ? message : m_file + QStringLiteral(": ") + message).toLocal8Bit().constData());
}

void BatchLog::note(const QString &message)
{
    m_events.messages.append(message);
    if (m_listener)
        m_listener({{QStringLiteral("message"), message}});
}

void BatchLog::begin(const QString &verb, int number)
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

void BatchLog::say(const QString &message)
{
    note(m_streams.named(message));
    print(m_streams.named(message));
}

ExitCode BatchLog::fail(ExitCode code, const QString &message)
{
    if (m_error.isEmpty())
        m_error = m_streams.named(message);
    say(message);
    return code;
}

void BatchLog::addFit(const RyFigureFits::Fit &fit)
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

void BatchLog::addBoxes(const QString &during, const std::vector<RyDialogRecord> &boxes)
{
    for (const RyDialogRecord &box : boxes) {
        print(box.describe());
        QVariantMap entry = box.toMap();
        entry[QStringLiteral("during")] = during;
        m_events.boxes.append(entry);
    }
}

void BatchLog::finish(ExitCode code, const QJsonObject &report)
{
    m_progress.clear();
    if (!m_listener)
        return;
    QJsonObject entry = batchEntry(m_file, int(code), m_verb, m_error, m_events);
    if (!report.isEmpty())
        entry[QStringLiteral("report")] = report;
    m_listener({{QStringLiteral("entry"), entry}});
}
