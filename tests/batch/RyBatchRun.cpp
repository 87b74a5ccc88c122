#include "RyBatchRun.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

QJsonObject RyBatchRun::Result::json() const
{
    return QJsonDocument::fromJson(out).object();
}

QJsonObject RyBatchRun::Result::firstRun() const
{
    return json().value(QStringLiteral("runs")).toArray().at(0).toObject();
}

QString RyBatchRun::sample()
{
    return QStringLiteral(RY_SOURCE_DIR "/resources/samples/mannequin.glb");
}

QString RyBatchRun::write(const QString &name, const QByteArray &content) const
{
    QFile target(file(name));
    return target.open(QIODevice::WriteOnly) && target.write(content) == content.size() ? target.fileName() : QString();
}

RyBatchRun::Result RyBatchRun::run(const QStringList &arguments, const QByteArray &input) const
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM", "XDG_RUNTIME_DIR"})
        environment.remove(QString::fromLatin1(name));
    environment.insert(QStringLiteral("RYHOST_SETTINGS_DIR"), file(QStringLiteral("settings")));
    if (!m_plugins.isEmpty())
        environment.insert(QStringLiteral("RYHOST_PLUGIN_PATH"), m_plugins);
    if (!m_home.isEmpty())
        environment.insert(QStringLiteral("RYHOST_HOME"), m_home);
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(m_folder.path());
    const QString program = QStringLiteral(RY_BINARY_DIR "/bin/ryhost");
    if (m_largestFile > 0)
        process.start(QStringLiteral("/bin/sh"),
                      QStringList{QStringLiteral("-c"),
                                  QStringLiteral("ulimit -f %1; exec \"$0\" \"$@\"").arg(m_largestFile / 512),
                                  program} +
                          arguments);
    else
        process.start(program, arguments);
    process.write(input);
    process.closeWriteChannel();
    Result result;
    result.waitFor(process);
    return result;
}
