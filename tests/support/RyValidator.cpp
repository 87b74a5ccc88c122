#include "support/RyValidator.h"

#include <QProcess>
#include <QRegularExpression>

RyValidation ryValidate(const QString &path)
{
    RyValidation result;
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(QStringLiteral("node"), {QStringLiteral(RY_SOURCE_DIR "/tools/validate"), path});
    if (!process.waitForStarted() || !process.waitForFinished(120000)) {
        result.report = process.errorString();
        return result;
    }
    result.report = QString::fromLocal8Bit(process.readAll());
    constexpr int notInstalled = 3;
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() == notInstalled)
        return result;
    result.available = true;
    static const QRegularExpression counts(QStringLiteral("(\\d+) errors, (\\d+) warnings"));
    const QRegularExpressionMatch match = counts.match(result.report);
    result.errors = match.hasMatch() ? match.captured(1).toInt() : 1;
    result.warnings = match.hasMatch() ? match.captured(2).toInt() : 0;
    return result;
}
