#include "rycore/base/RyPlugin.h"

RyPlugin::RyPlugin(const QString &name, const QString &author, const QString &description, quint16 major, quint16 minor,
                   quint16 revision, quint16 build)
    : m_name(name), m_author(author), m_description(description), m_version(major, minor, revision, build)
{}

void RyPlugin::setVersion(quint16 major, quint16 minor, quint16 revision, quint16 build)
{
    m_version = RyVersion(major, minor, revision, build);
}

void RyPlugin::addClassFactory(RyClassFactory *factory)
{
    if (factory)
        m_factories.append(factory);
}
