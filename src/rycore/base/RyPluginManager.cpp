#include "rycore/base/RyPluginManager.h"

#include "rycore/base/RyClassFactory.h"
#include "rycore/base/RyMessageLog.h"
#include "rycore/base/RyPlugin.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QLibrary>
#include <QPointer>

#include <algorithm>

using RyVersionFunction = RyVersion (*)();
using RyDefinitionFunction = RyPlugin *(*)();

/// One loaded file; unloads when deleted.
struct RyPluginManager::Library
{
    QString path;
    QLibrary library;
    RyPlugin *plugin = nullptr;

    explicit Library(const QString &canonicalPath) : path(canonicalPath), library(canonicalPath)
    {
        library.setLoadHints(QLibrary::ResolveAllSymbolsHint);
    }
    ~Library()
    {
        if (library.isLoaded())
            library.unload();
    }

    /// The reason for a refusal, empty when the plug-in is ready.
    QString load()
    {
        if (!library.load())
            return tr("it is not a library that can be loaded: %1").arg(library.errorString());
        const auto version = reinterpret_cast<RyVersionFunction>(library.resolve("getSDKVersion"));
        if (!version)
            return tr("it does not export getSDKVersion");
        const RyVersion built = version();
        if (built != RyPluginManager::sdkVersion())
            return tr("it was built for version %1, this is %2")
                .arg(built.toString(), RyPluginManager::sdkVersion().toString());
        const auto definition = reinterpret_cast<RyDefinitionFunction>(library.resolve("getPluginDefinition"));
        if (!definition)
            return tr("it does not export getPluginDefinition");
        plugin = definition();
        return plugin ? QString() : tr("it gives no plug-in definition");
    }
};

RyPluginManager::RyPluginManager(QObject *parent) : QObject(parent) {}

RyPluginManager::~RyPluginManager()
{
    deleteOwnedObjects();
    m_plugins.clear();
    while (!m_libraries.empty())
        m_libraries.pop_back();
}

RyVersion RyPluginManager::sdkVersion()
{
    return RyVersion(4, 22, 0, 7);
}

int RyPluginManager::loadFolder(const QString &folder)
{
    const QDir dir(folder);
    if (!dir.exists()) {
        m_errors.append(tr("The plug-in folder %1 does not exist.").arg(QDir::toNativeSeparators(folder)));
        RyMessageLog::global().warning(m_errors.last());
        return 0;
    }
    QStringList names = dir.entryList({QStringLiteral("*.so")}, QDir::Files, QDir::NoSort);
    std::sort(names.begin(), names.end());
    int loaded = 0;
    for (const QString &name : qAsConst(names))
        loaded += loadLibrary(dir.filePath(name)) ? 1 : 0;
    return loaded;
}

bool RyPluginManager::loadLibrary(const QString &path, QString *error)
{
    const QString canonical = QFileInfo(path).canonicalFilePath();
    QString reason;
    std::unique_ptr<Library> library;
    if (canonical.isEmpty()) {
        reason = tr("there is no such file");
    } else if (std::any_of(m_libraries.begin(), m_libraries.end(),
                           [&](const auto &known) { return known->path == canonical; })) {
        reason = tr("it is loaded already");
    } else {
        library = std::make_unique<Library>(canonical);
        reason = library->load();
    }
    if (!reason.isEmpty()) {
        m_errors.append(tr("The plug-in %1 was not loaded: %2.").arg(QDir::toNativeSeparators(path), reason));
        RyMessageLog::global().warning(m_errors.last());
        if (error)
            *error = m_errors.last();
        return false;
    }
    m_plugins.push_back(library->plugin);
    m_libraries.push_back(std::move(library));
    if (error)
        error->clear();
    return true;
}

std::vector<RyClassFactory *> RyPluginManager::factories() const
{
    std::vector<RyClassFactory *> all;
    for (const RyPlugin *plugin : m_plugins)
        all.insert(all.end(), plugin->getClassFactories().begin(), plugin->getClassFactories().end());
    return all;
}

RyClassFactory *RyPluginManager::findFactory(const QString &className) const
{
    for (const RyPlugin *plugin : m_plugins) {
        for (RyClassFactory *factory : plugin->getClassFactories()) {
            if (factory->className() == className)
                return factory;
        }
    }
    return nullptr;
}

QObject *RyPluginManager::createInstance(const QString &className) const
{
    RyClassFactory *factory = findFactory(className);
    return factory ? factory->createInstance() : nullptr;
}

void RyPluginManager::deleteOwnedObjects()
{
    const QCoreApplication *application = QCoreApplication::instance();
    if (!application)
        return;
    // The end of one may be the end of another.
    std::vector<QPointer<QObject>> owned;
    for (QObject *child : application->children()) {
        const QMetaObject *childClass = child->metaObject();
        const std::vector<RyClassFactory *> all = factories();
        if (std::any_of(all.begin(), all.end(),
                        [&](const RyClassFactory *factory) { return childClass->inherits(factory->metaObject()); }))
            owned.emplace_back(child);
    }
    for (const QPointer<QObject> &object : owned)
        delete object;
}
