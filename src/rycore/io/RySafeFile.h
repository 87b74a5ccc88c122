#pragma once

#include <QByteArray>
#include <QString>

/// Replaces a file in one step: the bytes go to a temporary file in the same folder, are flushed to the disk, and the
/// temporary file takes the old one's name and permissions. Whatever fails, the old file is still there as it was.
/// The temporary file has no name until it is whole, so that a process that is killed leaves nothing; where the file
/// system knows no such files it is called "ryhost-MACHINE-PROCESS-NUMBER.rysave", and the next save in the folder from
/// the same machine removes those of processes that no longer run.
class RySafeFile
{
public:
    /// False with a message naming the file and the reason: no folder, no right to write, no room. A file or folder
    /// without any write permission is not replaced, whoever runs the program.
    static bool write(const QString &path, const QByteArray &bytes, QString *error);
};
