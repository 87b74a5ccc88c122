#pragma once

#include "rycore/math/RyIndexList.h"

#include <QString>

/// A named set of facets.
class RyFaceGroup
{
public:
    explicit RyFaceGroup(const QString &name) : m_name(name) {}
    const QString &getName() const { return m_name; }
    const RyIndexList &getFacets() const { return m_facets; }
    RyIndexList &facets() { return m_facets; }

private:
    QString m_name;
    RyIndexList m_facets; // sorted
};
