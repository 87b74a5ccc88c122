#pragma once

#include <QByteArray>
#include <QCoreApplication>
#include <QDateTime>
#include <QString>
#include <QStringList>

class HostFiles;
class RyScene;

/// What a snapshot says of itself: of which scene, and from when.
struct RecoveryInfo
{
    Q_DECLARE_TR_FUNCTIONS(RecoveryInfo)
public:
    static constexpr char PartName[] = "recovery";

    QString path; ///< where the scene belongs; empty for one that was never saved
    bool isSample = false;
    bool jointsOnly = false;
    int fileCount = 0; ///< how many files came into the scene
    QDateTime time;
    QStringList losses; ///< what could not be kept

    static RecoveryInfo of(const RyScene &scene, const HostFiles &files, const QStringList &losses);
    QByteArray toBytes() const;
    /// An invalid time where the bytes make no sense.
    static RecoveryInfo fromBytes(const QByteArray &bytes);

    /// The name of the scene, for people.
    QString name() const;
    /// In the words of the user's country.
    QString timeText() const;
    /// Whether the file on the disk was written after this.
    bool isOlderThanFile() const;
};
