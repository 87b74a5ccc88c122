#include "ryhost/batch/BatchDocument.h"

#include "ryhost/batch/BatchVerbs.h"
#include "ryhost/batch/ExitCode.h"
#include "ryhost/start/HostVersion.h"

#include <QJsonDocument>

#include <cstdio>

QJsonObject batchEntry(const QString &file, int code, const QString &verb, const QString &error,
                       const BatchEvents &events)
{
    QJsonObject entry{
        {QStringLiteral("file"), file},
        {QStringLiteral("code"), code},
        {QStringLiteral("outcome"), exitCodeText(code)},
        {QStringLiteral("written"), QJsonArray::fromStringList(events.written)},
        {QStringLiteral("messages"), QJsonArray::fromStringList(events.messages)},
        {QStringLiteral("runs"), QJsonArray::fromVariantList(events.runs)},
        {QStringLiteral("boxes"), QJsonArray::fromVariantList(events.boxes)},
    };
    if (!events.fits.isEmpty())
        entry[QStringLiteral("fits")] = QJsonArray::fromVariantList(events.fits);
    if (code != int(ExitCode::Done)) {
        entry[QStringLiteral("verb")] = verb;
        entry[QStringLiteral("error")] = error;
    }
    return entry;
}

QByteArray batchDocument(const QStringList &arguments, int code, const QString &error, const QJsonArray &files)
{
    QJsonObject document{
        {QStringLiteral("program"), QStringLiteral("ryhost")},
        {QStringLiteral("version"), hostVersion()},
        {QStringLiteral("arguments"), QJsonArray::fromStringList(arguments)},
        {QStringLiteral("code"), code},
        {QStringLiteral("outcome"), exitCodeText(code)},
        {QStringLiteral("files"), files},
    };
    if (!error.isEmpty())
        document[QStringLiteral("error")] = error;
    return QJsonDocument(document).toJson();
}

int refuseWrongUse(const QStringList &arguments, const QString &error)
{
    std::fprintf(stderr, "ryhost: %s\nTry ryhost --help.\n", error.toLocal8Bit().constData());
    const int code = int(ExitCode::WrongUse);
    if (arguments.contains(QLatin1String(BatchVerbs::Json)))
        std::fputs(batchDocument(arguments, code, error, {}).constData(), stdout);
    return code;
}
