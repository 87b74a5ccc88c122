#pragma once

#include <array>

/// The four rays of a bend about its axis, in degrees: static A, dynamic B, dynamic C, static D. They run downward in
/// this order and may pass the cut at +-180 degrees on their way.
class RyBendAngles
{
public:
    using Values = std::array<float, 4>;

    explicit RyBendAngles(const Values &degrees);

    /// The ray goes to that direction by the shorter way, and those that it meets go along with it: it stays between
    /// its neighbours, and the rays together stay within one turn, for which the far end gives way.
    void push(int index, double degrees);
    /// Each in (-180, 180]; rays that point where they did before keep their number.
    Values values() const;

    /// The same direction in (-180, 180].
    static double wrap(double degrees);
    /// The same direction in [0, 360).
    static double wrapUpward(double degrees);

private:
    Values m_start;
    std::array<double, 4> m_unwrapped; // downward without a cut, as far as they were in order
};
