#pragma once

#include <QColor>

#include <array>
#include <vector>

/// The colours of weights: one for each of the values that a weight map can have.
class RyWeightColors
{
public:
    /// Red, green, blue, alpha, as GL takes them.
    using Bytes = std::array<quint8, 4>;

    /// `opacity` 0 to 255.
    void set(const QColor &staticColor, const QColor &dynamicColor, int opacity);
    /// Grows with every change; 0 before the first one.
    quint64 revision() const { return m_revision; }
    /// By weight, from the static colour at 0 to the dynamic one at full weight; reversed from the dynamic one to the
    /// static one.
    const std::vector<Bytes> &ramp(bool isReversed);

private:
    QColor m_static;
    QColor m_dynamic;
    int m_opacity = 0;
    quint64 m_revision = 0;
    std::array<std::vector<Bytes>, 2> m_ramps; // straight and reversed, empty until they are asked for
};
