#include "rycore/parametric/RyLegacyKernels.h"
#include "rycore/parametric/RyLegacyMotion.h"

#include "rycore/parametric/RyLegacyLoop.h"

#include <cstring>

namespace {

/// Two registers of two doubles each, as every processor has them in one way or another.
struct PlainRegisters
{
    using Two = double __attribute__((vector_size(16)));
    struct Vector
    {
        Two low, high;
    };

    static RY_ALWAYS_INLINE Vector spread(double number) { return {Two{number, number}, Two{number, number}}; }
    static RY_ALWAYS_INLINE Vector read(const float *from) { return {Two{from[0], from[1]}, Two{from[2], from[3]}}; }
    static RY_ALWAYS_INLINE Vector gather(const float *from, const int *offsets)
    {
        return {Two{from[offsets[0]], from[offsets[1]]}, Two{from[offsets[2]], from[offsets[3]]}};
    }
    static RY_ALWAYS_INLINE void write(const Vector &v, float *to)
    {
        to[0] = float(v.low[0]);
        to[1] = float(v.low[1]);
        to[2] = float(v.high[0]);
        to[3] = float(v.high[1]);
    }
    static RY_ALWAYS_INLINE Vector load(const double *from)
    {
        Vector v;
        std::memcpy(&v, from, sizeof v);
        return v;
    }
    static RY_ALWAYS_INLINE void store(const Vector &v, double *to) { std::memcpy(to, &v, sizeof v); }
    static RY_ALWAYS_INLINE Vector times(const Vector &a, const Vector &b) { return {a.low * b.low, a.high * b.high}; }
    static RY_ALWAYS_INLINE Vector plus(const Vector &a, const Vector &b) { return {a.low + b.low, a.high + b.high}; }
    static RY_ALWAYS_INLINE Vector minus(const Vector &a, const Vector &b) { return {a.low - b.low, a.high - b.high}; }
    static RY_ALWAYS_INLINE Vector timesPlus(const Vector &a, const Vector &b, const Vector &c)
    {
        return {a.low * b.low + c.low, a.high * b.high + c.high};
    }
    static RY_ALWAYS_INLINE Vector timesFrom(const Vector &a, const Vector &b, const Vector &c)
    {
        return {c.low - a.low * b.low, c.high - a.high * b.high};
    }
    static RY_ALWAYS_INLINE Vector positive(const Vector &v)
    {
        const auto of = [](double each) { return each > 0.0 ? each : 0.0; };
        return {Two{of(v.low[0]), of(v.low[1])}, Two{of(v.high[0]), of(v.high[1])}};
    }
};

} // namespace

void RyLegacyKernels::movePlain(const Task &task)
{
    moveTask<PlainRegisters>(task);
}
