#pragma once

#include <QString>
#include <QStringList>

#include <functional>

/// What the process that reads a foreign file is given.
struct RyForeignLimits
{
    int silence = 60000;                ///< milliseconds without progress
    qint64 memory = qint64(1024) << 20; ///< bytes that the process may hold
    int work = 600000;                  ///< milliseconds without progress while it computes all the time
};

/// Reads files of formats that the program does not know itself (FBX, Collada, BVH), in a process of its own: what
/// goes wrong there, a crash or an endless loop over a damaged file, ends that process and is told in a message.
/// Needs no event loop and handles no events.
class RyForeignImport
{
public:
    /// Called many times a second with what is done, from 0 to 1; false cancels.
    using Progress = std::function<bool(double done)>;

    /// Of the files that it takes, lower case.
    static QStringList endings();
    /// Gets the glTF 2.0 binary that the file became, and is false when it cannot use it.
    using Use = std::function<bool(const QByteArray &glb)>;

    /// Has the file read, gives the result to `use` and the notes on what did not come along to `notes`. `unit`:
    /// centimetres per unit of the file, 0 to find it. False with a message that names the file, the reason and a way
    /// out.
    static bool read(const QString &path, double unit, const Progress &progress, const Use &use, QString *error,
                     QStringList *notes, const RyForeignLimits &limits = RyForeignLimits());
};
