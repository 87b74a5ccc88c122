#include "support/RyTest.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QThread>

#include <atomic>
#include <cstdio>
#include <random>

static QtMessageHandler testMessageHandler = nullptr;
static std::atomic<int> connectWarnings{0};

// A connection by name that fails only says so in a warning; here it fails the test that is running.
static void failOnConnectWarning(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    testMessageHandler(type, context, message);
    const bool isOfConnect = message.startsWith(QLatin1String("QObject::connect")) ||
                             message.startsWith(QLatin1String("QObject::disconnect")) ||
                             message.startsWith(QLatin1String("QMetaObject::connectSlotsByName"));
    if (type != QtWarningMsg || !isOfConnect)
        return;
    ++connectWarnings;
    if (QTest::currentTestFunction() && QThread::currentThread() == QCoreApplication::instance()->thread())
        QTest::qFail(qPrintable(message), __FILE__, __LINE__);
}

// Runs one class as QTest::qExec does; QtTest puts up its message handler at the beginning of that.
static int runTest(QObject *test, int argc, char **argv)
{
    QTest::qInit(test, argc, argv);
    connectWarnings = 0;
    testMessageHandler = qInstallMessageHandler(failOnConnectWarning);
    const int failures = QTest::qRun();
    qInstallMessageHandler(testMessageHandler);
    QTest::qCleanup();
    return failures > 0 ? failures : connectWarnings.load();
}

std::vector<RyTestEntry> &ryTestRegistry()
{
    static std::vector<RyTestEntry> entries;
    return entries;
}

int ryRunTests(int argc, char **argv)
{
    std::vector<char *> arguments(argv, argv + argc);
    QByteArray only;
    if (argc > 1 && argv[1][0] != '-') {
        for (const RyTestEntry &entry : ryTestRegistry()) {
            if (qstrcmp(entry.name, argv[1]) == 0) {
                only = argv[1];
                arguments.erase(arguments.begin() + 1);
                break;
            }
        }
    }
    int failures = 0;
    for (const RyTestEntry &entry : ryTestRegistry()) {
        if (!only.isEmpty() && only != entry.name)
            continue;
        const std::unique_ptr<QObject> test(entry.create());
        failures += runTest(test.get(), int(arguments.size()), arguments.data());
    }
    return failures == 0 ? 0 : 1;
}

QString ryModelsPath()
{
    const QString path = qEnvironmentVariable("RY_MODELS");
    return !path.isEmpty() && QFileInfo(path).isDir() ? path : QString();
}

QString ryModel(const QString &name)
{
    const QString folder = ryModelsPath();
    if (folder.isEmpty())
        return {};
    const QString path = folder + QLatin1Char('/') + name;
    return QFileInfo::exists(path) ? path : QString();
}

unsigned ryTestSeed()
{
    static const unsigned seed = [] {
        bool given = false;
        unsigned value = qEnvironmentVariable("RY_SEED").toUInt(&given);
        if (!given)
            value = std::random_device{}();
        std::printf("RY_SEED=%u\n", value);
        std::fflush(stdout);
        return value;
    }();
    return seed;
}
