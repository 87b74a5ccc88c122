#pragma once

#include "ryforeign/RyForeignPivot.h"

#include <QByteArray>
#include <QHash>

#include <vector>

/// What a node of an FBX file says of how it stands, as far as the importers' library takes it otherwise than the
/// format means it.
class RyFbxTransform
{
public:
    using Vector = RyForeignPivot::Vector;

    static bool isKnown(const QByteArray &name);
    /// A known property with three numbers, or one.
    void add(const QByteArray &name, const Vector &value);

    /// Points and the place of the meshes; none of them where it has none.
    RyForeignPivot pivot() const;
    bool hasPivot() const;
    /// How it takes on the scale of what is above it.
    RyForeignScaling scaling() const;
    /// Properties that the library has to get otherwise: points and the place of the meshes stand apart, it turns
    /// by PostRotation where the format turns back by it, and it obeys turns and an order that are switched off.
    std::vector<std::pair<QByteArray, Vector>> changes() const;

private:
    Vector valueOf(const char *name, double otherwise = 0.0) const;

    QHash<QByteArray, Vector> m_values;
};
