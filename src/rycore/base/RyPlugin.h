#pragma once

#include "rycore/base/RyVersion.h"

#include <QList>
#include <QString>

class RyClassFactory;

/// What a plug-in library says of itself: name, author, description, version and the factories of its classes, in
/// order. Does not own the factories.
class RyPlugin
{
public:
    RyPlugin(const QString &name, const QString &author, const QString &description, quint16 major, quint16 minor,
             quint16 revision, quint16 build);

    void setAuthor(const QString &author) { m_author = author; }
    void setVersion(quint16 major, quint16 minor, quint16 revision, quint16 build);
    void setDescription(const QString &description) { m_description = description; }
    void addClassFactory(RyClassFactory *factory);

    const QString &getName() const { return m_name; }
    const QString &getAuthor() const { return m_author; }
    const QString &getDescription() const { return m_description; }
    const RyVersion &getVersion() const { return m_version; }
    const QList<RyClassFactory *> &getClassFactories() const { return m_factories; }

private:
    QString m_name;
    QString m_author;
    QString m_description;
    RyVersion m_version;
    QList<RyClassFactory *> m_factories;
};
