#include "foreign/ForeignStage.h"

#include <QDir>
#include <QProcessEnvironment>

#include <algorithm>

ForeignStage::ForeignStage(Reader reader)
{
    if (reader == Reader::Test)
        qputenv("RYHOST_FOREIGN_READER", readerPath().toLocal8Bit());
    qputenv("TMPDIR", m_temporary.path().toLocal8Bit());
}

ForeignStage::~ForeignStage()
{
    qunsetenv("RYHOST_FOREIGN_READER");
    qunsetenv("TMPDIR");
}

QString ForeignStage::sample()
{
    return QStringLiteral(RY_SOURCE_DIR "/resources/samples/mannequin.glb");
}

QString ForeignStage::readerPath()
{
    return QStringLiteral(RY_BINARY_DIR "/testreaders/testreader");
}

QString ForeignStage::write(const QString &name, const QByteArray &content) const
{
    QFile file(path(name));
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size() ? file.fileName() : QString();
}

QStringList ForeignStage::leftovers() const
{
    QStringList names = QDir(m_temporary.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden);
    // The toolkit keeps a folder of its own where the system gives it none.
    names.erase(std::remove_if(names.begin(), names.end(),
                               [](const QString &name) { return name.startsWith(QLatin1String("runtime-")); }),
                names.end());
    return names;
}

ForeignStage::Run ForeignStage::run(const QStringList &arguments)
{
    return runProgram(QStringLiteral(RY_BINARY_DIR "/bin/ryhost"), arguments);
}

ForeignStage::Run ForeignStage::runProgram(const QString &program, const QStringList &arguments)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        environment.remove(QString::fromLatin1(name));
    process.setProcessEnvironment(environment);
    process.start(program, arguments);
    Run result;
    result.waitFor(process);
    return result;
}

QList<int> ForeignStage::childrenOf(qint64 process)
{
    QList<int> children;
    for (const QString &name : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs)) {
        QFile file(QStringLiteral("/proc/%1/stat").arg(name));
        if (name.toInt() <= 0 || !file.open(QIODevice::ReadOnly))
            continue;
        // The name of the program, in parentheses, may hold anything; then come its state and its parent.
        const QByteArray text = file.readAll();
        if (text.mid(text.lastIndexOf(')') + 2).split(' ').value(1).toLongLong() == process)
            children.append(name.toInt());
    }
    return children;
}
