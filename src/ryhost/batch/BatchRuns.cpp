#include "ryhost/batch/BatchRuns.h"

#include "rycore/app/RyMainWindow.h"
#include "rycore/scene/RyScene.h"
#include "ryhost/batch/BatchDocument.h"
#include "ryhost/batch/BatchProcess.h"
#include "ryhost/batch/BatchRunner.h"
#include "ryhost/batch/BatchStreams.h"
#include "ryhost/start/HostPlugins.h"

#include <algorithm>
#include <cstdio>

namespace {

int runFile(const BatchArguments &arguments, BatchStreams &streams, int number, const BatchLog::Listener &listener = {})
{
    RyMainWindow window(ryScene());
    loadHostPlugins(window);
    return int(BatchRunner(window, arguments, streams, number, listener).run());
}

/// What became of a file, told by its process or, where that did not live to tell, by what it told before.
QJsonObject entryOf(const QString &file, const BatchProcess::Result &result)
{
    BatchEvents events;
    QString verb;
    for (const QJsonObject &event : result.events) {
        if (event.contains(QStringLiteral("entry")))
            return event.value(QStringLiteral("entry")).toObject();
        if (event.contains(QStringLiteral("verb")))
            verb = event.value(QStringLiteral("verb")).toString();
        else
            events.messages.append(event.value(QStringLiteral("message")).toString());
    }
    const int code = std::max(result.code, EndedSilently);
    const QString during = verb.isEmpty() ? QStringLiteral("before it was opened") : QStringLiteral("during ") + verb;
    const QString error = QStringLiteral("%1: the program was %2 %3; what was written before that is whole")
                              .arg(file, code > EndedSilently ? exitCodeText(code) : QStringLiteral("ended"), during);
    std::fprintf(stderr, "%s\n", error.toLocal8Bit().constData());
    events.messages.append(error);
    return batchEntry(file, code, verb, error, events);
}

void printSummary(const QJsonArray &entries)
{
    int done = 0;
    QString rest;
    for (const QJsonValue &value : entries) {
        const QJsonObject entry = value.toObject();
        if (entry.value(QStringLiteral("code")).toInt() == int(ExitCode::Done))
            ++done;
        else
            rest += QStringLiteral("; %1: %2")
                        .arg(entry.value(QStringLiteral("file")).toString(),
                             entry.value(QStringLiteral("outcome")).toString());
    }
    std::fprintf(stderr, "%d of %d files done%s\n", done, int(entries.size()), rest.toLocal8Bit().constData());
}

} // namespace

int runBatch(const QStringList &arguments, const ApplicationFrame &frame)
{
    BatchArguments parsed;
    QString error;
    if (!parsed.parse(arguments, &error))
        return refuseWrongUse(arguments, error);
    BatchStreams streams(parsed);
    if (parsed.files.size() == 1 && !parsed.asJson)
        return frame([&] { return runFile(parsed, streams, 0); });

    if (parsed.files.size() > 1)
        streams.readAhead(parsed);
    QJsonArray entries;
    int worst = 0;
    for (int number = 0; number < parsed.files.size(); ++number) {
        const auto result = BatchProcess::run([&](const BatchLog::Listener &listener) {
            return frame([&] { return runFile(parsed, streams, number, listener); });
        });
        entries.append(entryOf(parsed.files.at(number), result));
        worst = std::max(worst, entries.last().toObject().value(QStringLiteral("code")).toInt());
    }
    if (parsed.files.size() > 1)
        printSummary(entries);
    if (parsed.asJson && !streams.write(batchDocument(arguments, worst, QString(), entries), &error)) {
        std::fprintf(stderr, "%s\n", error.toLocal8Bit().constData());
        worst = std::max(worst, int(ExitCode::CannotWrite));
    }
    return worst;
}
