#pragma once

#include "rycore/base/RyVersion.h"

#include <QObject>
#include <QStringList>

#include <memory>
#include <vector>

class RyClassFactory;
class RyPlugin;

/// Finds plug-in libraries, loads them through their two exported functions and keeps the registry of classes.
/// Each refusal is a message that names the file and the reason.
class RyPluginManager : public QObject
{
    Q_OBJECT
public:
    explicit RyPluginManager(QObject *parent = nullptr);
    /// Unloads the libraries; objects of their classes must be gone, but for those that `deleteOwnedObjects` deletes.
    ~RyPluginManager() override;

    /// The version of the interface that plug-ins must be built against: 4.22.0.7.
    static RyVersion sdkVersion();

    /// Loads every library of the folder, in order of file name. Returns how many were loaded.
    int loadFolder(const QString &folder);
    /// Asks for the version first and for the definition only when it fits.
    bool loadLibrary(const QString &path, QString *error = nullptr);
    const QStringList &errors() const { return m_errors; }

    const std::vector<RyPlugin *> &plugins() const { return m_plugins; }
    /// All factories, plug-ins in order of loading, classes in the plug-in's order.
    std::vector<RyClassFactory *> factories() const;
    /// Null when no class of that name is registered.
    RyClassFactory *findFactory(const QString &className) const;
    QObject *createInstance(const QString &className) const;

    /// Deletes the objects of registered classes that the application owns: what scripts make and may not delete. The
    /// script engine must be gone.
    void deleteOwnedObjects();

private:
    struct Library;
    std::vector<std::unique_ptr<Library>> m_libraries;
    std::vector<RyPlugin *> m_plugins;
    QStringList m_errors;
};
