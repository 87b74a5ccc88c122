#include "ryhost/recovery/RecoveryInfo.h"
#include "ryhost/commands/timeText.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

RecoveryInfo RecoveryInfo::of(const HostFiles &files, const QStringList &losses)
{
    RecoveryInfo info;
    info.path = files.path();
    info.isSample = files.file().isSample();
    info.jointsOnly = files.savesJointsOnly();
    info.mergedFiles = files.file().mergedFiles();
    info.stamp = files.file().stamp();
    info.time = QDateTime::currentDateTimeUtc();
    info.losses = losses;
    return info;
}

QByteArray RecoveryInfo::toBytes() const
{
    const QJsonObject object{{QStringLiteral("path"), path},
                             {QStringLiteral("sample"), isSample},
                             {QStringLiteral("jointsOnly"), jointsOnly},
                             {QStringLiteral("merged"), mergedFiles},
                             {QStringLiteral("written"), stamp.first.toUTC().toString(Qt::ISODateWithMs)},
                             {QStringLiteral("size"), stamp.second},
                             {QStringLiteral("time"), time.toString(Qt::ISODateWithMs)},
                             {QStringLiteral("losses"), QJsonArray::fromStringList(losses)}};
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

RecoveryInfo RecoveryInfo::fromBytes(const QByteArray &bytes)
{
    const QJsonObject object = QJsonDocument::fromJson(bytes).object();
    RecoveryInfo info;
    info.path = object.value(QStringLiteral("path")).toString();
    info.isSample = object.value(QStringLiteral("sample")).toBool();
    info.jointsOnly = object.value(QStringLiteral("jointsOnly")).toBool();
    info.mergedFiles = object.value(QStringLiteral("merged")).toInt();
    info.stamp = {QDateTime::fromString(object.value(QStringLiteral("written")).toString(), Qt::ISODateWithMs),
                  qint64(object.value(QStringLiteral("size")).toDouble())};
    info.time = QDateTime::fromString(object.value(QStringLiteral("time")).toString(), Qt::ISODateWithMs);
    for (const QJsonValue &loss : object.value(QStringLiteral("losses")).toArray())
        info.losses.append(loss.toString());
    return info;
}

QString RecoveryInfo::name() const
{
    return path.isEmpty() ? tr("Untitled") : QFileInfo(path).fileName();
}

QString RecoveryInfo::timeText() const
{
    return timeTextOf(time.toLocalTime());
}

bool RecoveryInfo::isFileWrittenSince() const
{
    return !isSample && stamp.first.isValid() && QFileInfo::exists(path) && OpenedFile::stampOf(path) != stamp;
}
