#include "ryhost/batch/ExitCode.h"

#include <cstring>

QString exitCodeText(int code)
{
    switch (ExitCode(code)) {
    case ExitCode::Done:
        return QStringLiteral("done");
    case ExitCode::FileRefused:
        return QStringLiteral("a file was refused");
    case ExitCode::WrongUse:
        return QStringLiteral("wrong use");
    case ExitCode::ActionRefused:
        return QStringLiteral("an action was refused");
    case ExitCode::CannotWrite:
        return QStringLiteral("something could not be written");
    case ExitCode::ScriptFailed:
        return QStringLiteral("a script failed");
    }
    if (code > EndedSilently)
        return QStringLiteral("killed by signal %1 (%2)")
            .arg(code - EndedSilently)
            .arg(QString::fromLocal8Bit(strsignal(code - EndedSilently)));
    return QStringLiteral("ended without saying how");
}
