#pragma once

#include <QByteArray>
#include <QString>

/// Replaces a file in one step: the bytes go to a temporary file in the same folder, are flushed to the disk, and the
/// temporary file takes the old one's name and permissions. Whatever fails, the old file is still there as it was.
class RySafeFile
{
public:
    /// False with a message naming the file and the reason: no folder, no right to write, no room. A file or folder
    /// without any write permission is not replaced, whoever runs the program.
    static bool write(const QString &path, const QByteArray &bytes, QString *error);
};
