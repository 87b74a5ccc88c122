#pragma once

#include "ryforeign/RyForeignPivot.h"

#include <QByteArray>
#include <QHash>

#include <vector>

/// What a node of a binary FBX file says of how it stands, as far as the importers' library takes it otherwise than the
/// format means it.
class RyFbxTransform
{
public:
    /// A property with one number or three, and where in the file that stands: a double each, or a whole number.
    void add(const QByteArray &name, const std::array<double, 3> &value, const std::array<qint64, 3> &at);

    /// Points and the place of the meshes; none of them where it has none.
    RyForeignPivot pivot() const;
    bool hasPivot() const;
    /// Bytes to be put at places of the file for the library: points and the place of the meshes stand apart, it turns
    /// by PostRotation where the format turns back by it, and it obeys turns and an order that are switched off.
    std::vector<std::pair<qint64, QByteArray>> changes() const;

private:
    using Vector = RyForeignPivot::Vector;
    struct Property
    {
        Vector value{};
        std::array<qint64, 3> at{};
    };
    Vector valueOf(const char *name, double otherwise = 0.0) const;
    void change(const char *name, const Vector &to, std::vector<std::pair<qint64, QByteArray>> &all) const;

    QHash<QByteArray, Property> m_properties;
};
