#pragma once

#include <QString>

#include <array>

/// A class identifier, "XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX".
class RyGuid
{
public:
    RyGuid() = default;
    /// Either case, braces optional; anything else gives the null identifier.
    static RyGuid fromString(const QString &text);
    /// Upper case, without braces.
    QString toString() const;
    bool isNull() const { return *this == RyGuid(); }
    bool operator==(const RyGuid &) const = default;

private:
    std::array<quint8, 16> m_bytes{};
};
