#pragma once

#include <QProcess>

/// How a program ended, and what it said.
struct RyEndedProgram
{
    int code = -1; // -2: it crashed
    QByteArray out;
    QByteArray err;

    /// Waits for one that was started. One that does not end is ended, and has no code.
    void waitFor(QProcess &process)
    {
        if (!process.waitForFinished(120000)) {
            process.kill();
            process.waitForFinished();
            return;
        }
        code = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -2;
        out = process.readAllStandardOutput();
        err = process.readAllStandardError();
    }
};
