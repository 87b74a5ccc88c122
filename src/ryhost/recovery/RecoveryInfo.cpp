#include "ryhost/recovery/RecoveryInfo.h"

#include "rycore/scene/RyScene.h"
#include "ryhost/commands/HostFiles.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>

RecoveryInfo RecoveryInfo::of(const RyScene &scene, const HostFiles &files, const QStringList &losses)
{
    RecoveryInfo info;
    info.path = files.path();
    info.isSample = files.isSample();
    info.jointsOnly = files.savesJointsOnly();
    info.fileCount = int(scene.getOrigins().size());
    info.time = QDateTime::currentDateTimeUtc();
    info.losses = losses;
    return info;
}

QByteArray RecoveryInfo::toBytes() const
{
    const QJsonObject object{{QStringLiteral("path"), path},
                             {QStringLiteral("sample"), isSample},
                             {QStringLiteral("jointsOnly"), jointsOnly},
                             {QStringLiteral("files"), fileCount},
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
    info.fileCount = object.value(QStringLiteral("files")).toInt();
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
    return QLocale().toString(time.toLocalTime(), QLocale::ShortFormat);
}

bool RecoveryInfo::isOlderThanFile() const
{
    const QFileInfo file(path);
    return !isSample && !path.isEmpty() && file.exists() && file.lastModified().toUTC() > time;
}
