#include "support/RyBlender.h"

#include <QProcess>
#include <QProcessEnvironment>
#include <QStandardPaths>

namespace {

constexpr int LongestRun = 480000; // milliseconds
constexpr int LastWords = 20000;

} // namespace

QString RyBlender::whyNot()
{
    if (QStandardPaths::findExecutable(QStringLiteral("blender")).isEmpty())
        return QStringLiteral("Blender is not installed");
    QString output;
    if (!run({QStringLiteral("--python-expr"), QStringLiteral("import numpy")}, &output))
        return QStringLiteral("Blender lacks numpy, which its reader of glTF needs");
    return {};
}

bool RyBlender::run(const QStringList &arguments, QString *output)
{
    QProcess blender;
    blender.setProcessChannelMode(QProcess::MergedChannels);
    // It takes the modules of the first Python there; only the system's has those that came with the package.
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("PATH"),
                       QStringLiteral("/usr/bin:/bin:") + environment.value(QStringLiteral("PATH")));
    blender.setProcessEnvironment(environment);
    blender.start(QStringLiteral("blender"),
                  QStringList{"-b", "--factory-startup", "--python-exit-code", "1"} + arguments);
    const bool isDone =
        blender.waitForFinished(LongestRun) && blender.exitStatus() == QProcess::NormalExit && blender.exitCode() == 0;
    *output = QString::fromUtf8(blender.readAll()).right(LastWords);
    return isDone;
}
