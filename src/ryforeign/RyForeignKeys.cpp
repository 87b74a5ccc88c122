#include "ryforeign/RyForeignKeys.h"

#include "ryforeign/RyForeignPivot.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>

namespace {

double dot(const RyForeignKeys::Numbers &a, const RyForeignKeys::Numbers &b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2] + a[3] * b[3];
}

/// Half of the angle between two turns, the shorter way.
double halfAngle(const RyForeignKeys::Numbers &a, const RyForeignKeys::Numbers &b)
{
    return std::acos(std::clamp(std::abs(dot(a, b)), 0.0, 1.0));
}

RyForeignKeys::Numbers between(const RyForeignKeys::Numbers &a, const RyForeignKeys::Numbers &b, double part,
                               bool isRotation)
{
    double left = 1.0 - part, right = part;
    if (isRotation) {
        const double angle = halfAngle(a, b);
        if (angle > 1e-6) {
            left = std::sin(left * angle) / std::sin(angle);
            right = std::sin(right * angle) / std::sin(angle);
        }
        if (dot(a, b) < 0.0)
            right = -right;
    }
    RyForeignKeys::Numbers all{};
    for (size_t i = 0; i < all.size(); ++i)
        all[i] = left * a[i] + right * b[i];
    return all;
}

/// Of row vectors.
RyAffine turnOf(const RyForeignKeys::Numbers &q)
{
    const double n = 2.0 / dot(q, q);
    const double x = q[0], y = q[1], z = q[2], w = q[3];
    RyAffine map;
    map.m[0][0] = 1.0 - n * (y * y + z * z);
    map.m[0][1] = n * (x * y + z * w);
    map.m[0][2] = n * (x * z - y * w);
    map.m[1][0] = n * (x * y - z * w);
    map.m[1][1] = 1.0 - n * (x * x + z * z);
    map.m[1][2] = n * (y * z + x * w);
    map.m[2][0] = n * (x * z + y * w);
    map.m[2][1] = n * (y * z - x * w);
    map.m[2][2] = 1.0 - n * (x * x + y * y);
    return map;
}

} // namespace

/// Keys that are not finite as a file holds them, or not later than the one before, make no curve.
void RyForeignKeys::add(double time, std::initializer_list<double> numbers)
{
    const auto isFinite = [](double number) { return std::abs(number) <= double(std::numeric_limits<float>::max()); };
    if (!isFinite(time) || !std::all_of(numbers.begin(), numbers.end(), isFinite))
        return;
    if (!times.empty() && !(float(time) > times.back()))
        return;
    times.push_back(float(time));
    for (const double number : numbers)
        values.push_back(float(number));
}

void RyForeignKeys::addIfNone(std::initializer_list<double> numbers)
{
    if (times.empty())
        add(0.0, numbers);
}

bool RyForeignKeys::isConstant() const
{
    for (size_t i = size_t(components); i < values.size(); ++i) {
        if (values[i] != values[i % size_t(components)])
            return false;
    }
    return true;
}

RyForeignKeys::Numbers RyForeignKeys::at(float time) const
{
    const auto key = [this](size_t place) {
        Numbers all{};
        for (size_t i = 0; i < size_t(components); ++i)
            all[i] = double(values[place * size_t(components) + i]);
        return all;
    };
    const size_t next = size_t(std::upper_bound(times.begin(), times.end(), time) - times.begin());
    if (next == 0)
        return key(0);
    if (next == times.size())
        return key(times.size() - 1);
    const double part = (double(time) - times[next - 1]) / (double(times[next]) - times[next - 1]);
    return between(key(next - 1), key(next), part, components == 4);
}

RyForeignKeys ryPivotedKeys(const RyForeignPivot &pivot, const RyForeignKeys &positions, const RyForeignKeys &rotations,
                            const RyForeignKeys &scales)
{
    constexpr double largestTurn = 0.05; // radians; a chord is within 0.0003 of the radius there
    constexpr int mostSteps = 128;
    if (positions.times.empty() || rotations.times.empty() ||
        scales.times.empty()) // as of a node that is scaled by no number
        return positions;
    std::set<float> times;
    for (const RyForeignKeys *each : {&positions, &rotations, &scales})
        times.insert(each->times.begin(), each->times.end());
    RyForeignKeys keys{3, {}, {}};
    const auto add = [&](float time) {
        const RyForeignKeys::Numbers place = positions.at(time), scale = scales.at(time);
        const RyForeignPivot::Vector by = pivot.shift(turnOf(rotations.at(time)), {scale[0], scale[1], scale[2]});
        keys.add(double(time), {place[0] + by[0], place[1] + by[1], place[2] + by[2]});
    };
    for (auto time = times.begin(); time != times.end(); ++time) {
        add(*time);
        const auto next = std::next(time);
        if (next == times.end())
            break;
        const double turn = 2.0 * halfAngle(rotations.at(*time), rotations.at(*next));
        const int steps = std::clamp(int(std::ceil(turn / largestTurn)), 1, mostSteps);
        for (int step = 1; step < steps; ++step)
            add(*time + float(step) / float(steps) * (*next - *time));
    }
    return keys;
}
