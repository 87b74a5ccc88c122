#pragma once

#include <QString>

#include <compare>

/// Four numbers: major, minor, revision, build.
class RyVersion
{
public:
    RyVersion(quint16 major = 0, quint16 minor = 0, quint16 revision = 0, quint16 build = 0)
        : m_major(major), m_minor(minor), m_revision(revision), m_build(build)
    {}
    quint16 getMajor() const { return m_major; }
    quint16 getMinor() const { return m_minor; }
    quint16 getRevision() const { return m_revision; }
    quint16 getBuild() const { return m_build; }
    QString toString() const;
    auto operator<=>(const RyVersion &) const = default;

private:
    quint16 m_major, m_minor, m_revision, m_build;
};
