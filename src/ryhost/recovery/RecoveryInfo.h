#pragma once

#include "ryhost/commands/HostFiles.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QDateTime>
#include <QString>
#include <QStringList>

/// What a snapshot says of itself: of which scene, and from when.
struct RecoveryInfo
{
    Q_DECLARE_TR_FUNCTIONS(RecoveryInfo)
public:
    static constexpr char PartName[] = "recovery";

    QString path; ///< where the scene belongs; empty for one that was never saved
    bool isSample = false;
    bool jointsOnly = false;
    int mergedFiles = 0; ///< into the scene since it was opened or saved
    /// When the file at `path` was written, and its size, as it was when the scene was opened or saved.
    OpenedFile::Stamp stamp;
    QDateTime time;
    QStringList losses; ///< what could not be kept

    static RecoveryInfo of(const HostFiles &files, const QStringList &losses);
    QByteArray toBytes() const;
    /// An invalid time where the bytes make no sense.
    static RecoveryInfo fromBytes(const QByteArray &bytes);

    /// The name of the scene, for people.
    QString name() const;
    /// In the words of the user's country.
    QString timeText() const;
    /// Whether another program has written the file since it was opened or saved.
    bool isFileWrittenSince() const;
};
