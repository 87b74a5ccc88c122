#include "rycore/mesh/RyCageKernels.h"

#include "rycore/mesh/RyCageLoop.h"

namespace {

/// Two doubles, as every processor has them in one way or another.
struct PlainRegisters
{
    using Vector = double __attribute__((vector_size(16)));
    static constexpr int Width = 2;

    static RY_ALWAYS_INLINE Vector load(const double *from) { return Vector{from[0], from[1]}; }
    static RY_ALWAYS_INLINE void store(Vector x, Vector y, Vector z, Vector nearness, RyCageKernels::Direction *to)
    {
        to[0] = {x[0], y[0], z[0], nearness[0]};
        to[1] = {x[1], y[1], z[1], nearness[1]};
    }
    static RY_ALWAYS_INLINE void read(const RyCageKernels::Direction *const *rows, Vector &x, Vector &y, Vector &z,
                                      Vector &nearness)
    {
        x = Vector{rows[0]->x, rows[1]->x};
        y = Vector{rows[0]->y, rows[1]->y};
        z = Vector{rows[0]->z, rows[1]->z};
        nearness = Vector{rows[0]->nearness, rows[1]->nearness};
    }
    static RY_ALWAYS_INLINE Vector root(Vector v) { return Vector{__builtin_sqrt(v[0]), __builtin_sqrt(v[1])}; }
    static RY_ALWAYS_INLINE bool isAnyBelow(Vector v, double limit) { return !(v[0] >= limit && v[1] >= limit); }
};

} // namespace

void RyCageKernels::addPlain(Task &task)
{
    RyCageLoop<PlainRegisters>{task}.run();
}
