#pragma once

#include <QFileInfo>
#include <QString>

/// What several writers of files ask of the system.
namespace RyFileSystem {

/// The last error of the system (errno) for people: "there is no space left on the device" and so on.
QString lastReason();

/// Whether nobody may write to the file or folder. The superuser may write everywhere; what nobody may write to is
/// meant to stay as it is all the same.
bool isProtected(const QFileInfo &info);

/// Whether the current user owns the file or folder, and the link that leads to it where there is one: nobody else can
/// have put it there.
bool isOwn(const QString &path);

/// Tells this run of the system, and the processes that it can see, from those of any other machine or container with
/// which a folder may be shared: 16 letters and digits. Empty where the system does not tell.
QString machineMark();

/// The folder of the host library, or of a program that has this code within. What belongs to it lies beside it.
QString ownFolder();

} // namespace RyFileSystem
