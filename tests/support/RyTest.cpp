#include "support/RyTest.h"

#include <QDir>
#include <QFileInfo>

#include <cstdio>
#include <random>

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
        failures += QTest::qExec(test.get(), int(arguments.size()), arguments.data());
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
