#include "parametric/LegacyEvaluator.h"

#include <cmath>
#include <limits>
#include <optional>

namespace LegacyEvaluator {

namespace {

constexpr double Pi = 3.14159265358979323846;
constexpr double Degree = Pi / 180.0;

Vec add(const Vec &a, const Vec &b)
{
    return {a[0] + b[0], a[1] + b[1], a[2] + b[2]};
}

Vec sub(const Vec &a, const Vec &b)
{
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

Vec times(double s, const Vec &a)
{
    return {s * a[0], s * a[1], s * a[2]};
}

double dot(const Vec &a, const Vec &b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

double size(const Vec &a)
{
    return std::sqrt(dot(a, a));
}

Quat product(const Quat &p, const Quat &q)
{
    return {
        p[3] * q[0] + p[0] * q[3] + p[1] * q[2] - p[2] * q[1], p[3] * q[1] - p[0] * q[2] + p[1] * q[3] + p[2] * q[0],
        p[3] * q[2] + p[0] * q[1] - p[1] * q[0] + p[2] * q[3], p[3] * q[3] - p[0] * q[0] - p[1] * q[1] - p[2] * q[2]};
}

Quat inverse(const Quat &q)
{
    const double n = q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3];
    return {-q[0] / n, -q[1] / n, -q[2] / n, q[3] / n};
}

/// q^-1 v q
Vec turned(const Vec &v, const Quat &q)
{
    const Quat image = product(product(inverse(q), Quat{v[0], v[1], v[2], 0}), q);
    return {image[0], image[1], image[2]};
}

Quat about(int axis, double angle)
{
    Quat q{0, 0, 0, std::cos(angle / 2)};
    q[size_t(axis)] = std::sin(angle / 2);
    return q;
}

double clamped(double u)
{
    return u < 0 ? 0 : u > 1 ? 1 : u;
}

double S(double u)
{
    u = clamped(u);
    return u * u * (3 - 2 * u);
}

double wrap(double t)
{
    while (t > Pi)
        t -= 2 * Pi;
    while (t <= -Pi)
        t += 2 * Pi;
    return t;
}

double wrap0(double t)
{
    while (t >= 2 * Pi)
        t -= 2 * Pi;
    while (t < 0)
        t += 2 * Pi;
    return t;
}

/// From 0 at `start` to 1 at `end`.
double ramp(double x, double start, double end)
{
    if (start == end)
        return x < start ? 0 : 1;
    return S((x - start) / (end - start));
}

bool isInPlace(double a, double b)
{
    return std::fabs(a) < 24140.16 && std::fabs(b) < 24140.16;
}

/// One figure in one pose, for a point at rest that belongs to one bone.
struct Evaluation
{
    const Figure &figure;
    const std::vector<Controls> &controls;
    int owner;
    Vec rest;

    enum Side { Rests, Follows, Own, Parents };

    const Bone &bone(int b) const { return figure.bones[size_t(b)]; }

    bool isAncestor(int above, int below) const
    {
        for (int b = bone(below).parent; b >= 0; b = bone(b).parent) {
            if (b == above)
                return true;
        }
        return false;
    }

    Side side(int driver) const
    {
        if (driver == owner)
            return Own;
        if (isAncestor(driver, owner))
            return Follows;
        if (!isAncestor(owner, driver))
            return Rests;
        for (int b = bone(driver).parent; b != owner; b = bone(b).parent) {
            if (bone(b).hasGroup)
                return Rests;
        }
        return Parents;
    }

    Vec inAxes(int driver) const { return turned(sub(rest, bone(driver).origin), inverse(bone(driver).orientation)); }

    Vec inParameterSpace(int driver) const { return add(inAxes(driver), bone(driver).origin); }

    double length(int driver) const { return size(sub(bone(driver).end, bone(driver).origin)); }

    /// The first parameter about an axis that acts here.
    const Param *turnParam(int driver, int axis) const
    {
        const int joint = side(driver) == Own ? driver : bone(driver).parent;
        for (const Param &param : figure.params) {
            if (param.driver == driver && param.bone == joint && param.axis == axis &&
                (param.type == Bend || param.type == Twist))
                return &param;
        }
        return nullptr;
    }

    const Param *smoothParam(int joint, int driver) const
    {
        for (const Param &param : figure.params) {
            if (param.type == SmoothScale && param.bone == joint && param.driver == driver && joint >= 0 && driver >= 0)
                return &param;
        }
        return nullptr;
    }

    struct BendState
    {
        double w0 = 0, nearAxis = 1;
        bool upper = true;
    };

    BendState bend(const Param &param) const
    {
        const double A = param.values[0] * Degree;
        const double B = param.values[1] * Degree;
        const double C = param.values[2] * Degree;
        const double D = param.values[3] * Degree;
        const Vec y = inAxes(param.driver);
        const double phi = param.axis == 0   ? std::atan2(y[1], -y[2])
                           : param.axis == 1 ? std::atan2(y[2], y[0])
                                             : std::atan2(y[1], y[0]);
        Vec flat = y;
        flat[size_t(param.axis)] = 0;
        double width = wrap0(B - C);
        double mid = B - width / 2;
        if (width > 1.5 * Pi) {
            width = 0;
            mid = B + wrap(C - B) / 2;
        }
        const double half = width / 2;
        const double outA = std::fmin(half + std::fmax(wrap(A - B), 0), Pi);
        const double outD = std::fmin(half + std::fmax(wrap(C - D), 0), Pi);
        const double delta = wrap(phi - mid);
        const double out = delta >= 0 ? outA : outD;
        BendState state;
        state.upper = delta >= 0;
        state.w0 = S((out - std::fabs(delta)) / std::fmax(out - half, 1e-6));
        const double r0 = 0.05 * length(param.driver);
        state.nearAxis = r0 == 0 ? 1 : S(size(flat) / r0);
        return state;
    }

    /// |x M^-1|
    static double distanceIn(const std::array<Vec, 4> &m, const Vec &x)
    {
        const auto cross = [](const Vec &a, const Vec &b) {
            return Vec{a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
        };
        const double det = dot(m[0], cross(m[1], m[2]));
        if (det == 0)
            return std::numeric_limits<double>::infinity();
        const Vec d = sub(x, m[3]);
        return size(
            Vec{dot(d, cross(m[1], m[2])) / det, dot(d, cross(m[2], m[0])) / det, dot(d, cross(m[0], m[1])) / det});
    }

    static bool usesSpheres(const Param &param) { return param.matrices && param.dynamicMatrix != param.staticMatrix; }

    double sphere(const Param &param) const
    {
        const Vec x = inParameterSpace(param.driver);
        const double d = distanceIn(param.dynamicMatrix, x);
        const double s = std::fmin(distanceIn(param.staticMatrix, x), d / 1.05);
        if (d <= 1)
            return 1;
        if (s >= 1 || std::isinf(d))
            return 0;
        return 1 - S((d - 1) / ((d - 1) + (1 - s)));
    }

    static bool hasTwistZone(const Param &param) { return param.blend && isInPlace(param.values[0], param.values[1]); }

    static bool hasHigh(const Param &param) { return param.high && isInPlace(param.values[0], param.values[1]); }
    static bool hasLow(const Param &param) { return param.low && isInPlace(param.values[2], param.values[3]); }
    static bool hasSmoothZone(const Param &param) { return param.zones && (hasHigh(param) || hasLow(param)); }

    double smoothShare(const Param &param) const
    {
        const double x = inParameterSpace(param.driver)[size_t(param.axis)];
        double share = 1;
        if (hasHigh(param))
            share *= 1 - ramp(x, param.values[0], param.values[1]);
        if (hasLow(param))
            share *= ramp(x, param.values[3], param.values[2]);
        return usesSpheres(param) ? share * sphere(param) : share;
    }

    /// By applied zones of a bend; nothing where it has none.
    std::optional<double> bendZones(const Param &param) const
    {
        if (!param.angles && !usesSpheres(param))
            return {};
        double m = 1;
        if (param.angles) {
            const BendState state = bend(param);
            m *= 0.5 + (state.w0 - 0.5) * state.nearAxis;
        }
        return usesSpheres(param) ? m * sphere(param) : m;
    }

    double u(int driver) const
    {
        const Side where = side(driver);
        if (where == Follows || where == Rests)
            return where == Follows ? 1 : 0;
        double sum = 0;
        int count = 0;
        for (int axis = 0; axis < 3; ++axis) {
            const Param *param = turnParam(driver, axis);
            if (!param || param->type != Bend)
                continue;
            if (const std::optional<double> m = bendZones(*param)) {
                sum += *m;
                ++count;
            }
        }
        return count > 0 ? sum / count : where == Own ? 1 : 0;
    }

    double m(int driver, int axis) const
    {
        const Side where = side(driver);
        if (where == Follows || where == Rests)
            return where == Follows ? 1 : 0;
        const Param *param = turnParam(driver, axis);
        if (!param)
            return u(driver);
        if (param->type == Bend)
            return bendZones(*param).value_or(param->flipped ? 0 : 1);
        if (!hasTwistZone(*param) && !usesSpheres(*param))
            return u(driver);
        double fraction = 1;
        if (hasTwistZone(*param))
            fraction *= ramp(inParameterSpace(driver)[size_t(axis)], param->values[0], param->values[1]);
        return usesSpheres(*param) ? fraction * sphere(*param) : fraction;
    }

    /// The share of the driver's scale; the parent's share is the rest of it.
    double n(int driver) const
    {
        const Side where = side(driver);
        if (where == Follows || where == Rests)
            return where == Follows ? 1 : 0;
        const int parent = bone(driver).parent;
        const Param *p = smoothParam(driver, parent);
        if (p && hasSmoothZone(*p))
            return 1 - smoothShare(*p);
        const Param *q = smoothParam(parent, driver);
        if (q && hasSmoothZone(*q))
            return smoothShare(*q);
        return u(driver);
    }

    Vec linear(int driver, const Vec &v, double scaleShare) const
    {
        const Bone &its = bone(driver);
        const Controls &pose = controls[size_t(driver)];
        Vec r = turned(v, inverse(its.orientation));
        for (size_t k = 0; k < 3; ++k)
            r[k] *= 1 + scaleShare * (pose.scale[k] - 1);
        for (const int axis : its.order)
            r = turned(r, about(axis, -m(driver, axis) * pose.turn[size_t(axis)]));
        return turned(r, its.orientation);
    }

    Vec moved(int driver, const Vec &p) const
    {
        const Bone &its = bone(driver);
        return add(add(its.origin, linear(driver, sub(p, its.origin), n(driver))),
                   times(u(driver), controls[size_t(driver)].translation));
    }

    /// The bones without inheritance of scale that are kept from the scale of `driver`.
    std::vector<int> keptFromScaleOf(int driver) const
    {
        std::vector<int> kept;
        for (int c = 0; c < int(figure.bones.size()); ++c) {
            if (bone(c).inheritsScale)
                continue;
            for (int b = bone(c).parent; b >= 0; b = bone(b).parent) {
                if (b == driver)
                    kept.push_back(c);
                if (!bone(b).inheritsScale)
                    break;
            }
        }
        return kept;
    }

    /// Where the origin of `c` has come to below `driver`.
    Vec originBelow(int c, int driver) const
    {
        Vec at = bone(c).origin;
        for (int b = c; b != driver; b = bone(b).parent)
            at = moved(b, at);
        return at;
    }

    Vec image(int driver, const Vec &v) const
    {
        Vec x = v;
        for (int c = 0; c < int(figure.bones.size()); ++c) {
            if (bone(c).parent == driver)
                x = add(x, sub(image(c, v), v));
        }
        Vec y = moved(driver, x);
        for (const int c : keptFromScaleOf(driver)) {
            const Vec off = sub(x, originBelow(c, driver));
            const Vec scale = sub(linear(driver, off, n(driver)), linear(driver, off, 0));
            y = sub(y, times(n(c), scale));
        }
        return y;
    }

    Vec bulged() const
    {
        Vec v = rest;
        for (int driver = 0; driver < int(figure.bones.size()); ++driver) {
            if (side(driver) != Own && side(driver) != Parents)
                continue;
            for (int axis = 0; axis < 3; ++axis) {
                const Param *param = turnParam(driver, axis);
                if (!param || param->type != Bend || !param->bulges || length(driver) == 0)
                    continue;
                const double t = controls[size_t(driver)].turn[size_t(axis)];
                const BendState state = bend(*param);
                const double factor = param->values[size_t(4 + (state.upper ? 0 : 1) + (t > 0 ? 0 : 2))];
                const double b = 4 * state.w0 * (1 - state.w0) * state.nearAxis;
                const Vec line = times(1 / length(driver), sub(bone(driver).end, bone(driver).origin));
                const Vec from = sub(rest, bone(driver).origin);
                const Vec away = sub(from, times(dot(from, line), line));
                v = add(v, times(factor * b * std::fabs(t) / (Pi / 2), away));
            }
        }
        return v;
    }

    Vec result() const
    {
        const Vec start = bulged();
        Vec all = start;
        for (int b = 0; b < int(figure.bones.size()); ++b) {
            if (bone(b).parent < 0)
                all = add(all, sub(image(b, start), start));
        }
        return all;
    }
};

} // namespace

Vec deform(const Figure &figure, const std::vector<Controls> &controls, int owner, const Vec &point)
{
    return Evaluation{figure, controls, owner, point}.result();
}

} // namespace LegacyEvaluator
