#include "rycore/base/RyClassFactory.h"
#include "rycore/base/RyPluginManager.h"

#include <QApplication>
#include <QFile>
#include <QFileInfo>

#include <cstdio>
#include <memory>

static bool isMapped(const QString &library)
{
    QFile maps(QStringLiteral("/proc/self/maps"));
    return maps.open(QFile::ReadOnly) && maps.readAll().contains(QFileInfo(library).canonicalFilePath().toLocal8Bit());
}

static void sayWhetherMapped(const QString &library)
{
    std::printf("mapped: %s\n", isMapped(library) ? "yes" : "no");
}

/// Loads a plug-in, makes an object of each class, and unloads it again; says on the way whether the library is there.
/// What its static objects do when they go happens within this process, so that a crash is an exit status.
int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    const QString library = application.arguments().value(1);
    auto manager = std::make_unique<RyPluginManager>();
    QString error;
    if (!manager->loadLibrary(library, &error)) {
        std::printf("%s\n", qPrintable(error));
        return 1;
    }
    std::printf("loaded %d classes\n", int(manager->factories().size()));
    for (RyClassFactory *factory : manager->factories())
        delete factory->createInstance();
    sayWhetherMapped(library);
    manager.reset();
    sayWhetherMapped(library);
    return 0;
}
