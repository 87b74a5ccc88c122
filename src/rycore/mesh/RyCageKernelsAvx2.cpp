#include "rycore/mesh/RyCageKernels.h"

#if defined(__x86_64__) && defined(__GNUC__)

#include <cstring>
#include <immintrin.h>

// What is compiled from here on may only run where hasAvx2().
#pragma GCC push_options
#pragma GCC target("avx2,fma")

#include "rycore/mesh/RyCageLoop.h"

namespace {

struct Avx2Registers
{
    using Vector = __m256d;
    static constexpr int Width = 4;

    static RY_ALWAYS_INLINE Vector load(const double *from) { return _mm256_loadu_pd(from); }
    static RY_ALWAYS_INLINE void store(Vector x, Vector y, Vector z, Vector nearness, RyCageKernels::Direction *to)
    {
        turn(x, y, z, nearness);
        _mm256_store_pd(&to[0].x, x);
        _mm256_store_pd(&to[1].x, y);
        _mm256_store_pd(&to[2].x, z);
        _mm256_store_pd(&to[3].x, nearness);
    }
    static RY_ALWAYS_INLINE void read(const RyCageKernels::Direction *const *rows, Vector &x, Vector &y, Vector &z,
                                      Vector &nearness)
    {
        x = _mm256_load_pd(&rows[0]->x);
        y = _mm256_load_pd(&rows[1]->x);
        z = _mm256_load_pd(&rows[2]->x);
        nearness = _mm256_load_pd(&rows[3]->x);
        turn(x, y, z, nearness);
    }
    /// Rows become columns.
    static RY_ALWAYS_INLINE void turn(Vector &a, Vector &b, Vector &c, Vector &d)
    {
        const Vector ab0 = _mm256_unpacklo_pd(a, b);
        const Vector ab1 = _mm256_unpackhi_pd(a, b);
        const Vector cd0 = _mm256_unpacklo_pd(c, d);
        const Vector cd1 = _mm256_unpackhi_pd(c, d);
        a = _mm256_permute2f128_pd(ab0, cd0, 0x20);
        b = _mm256_permute2f128_pd(ab1, cd1, 0x20);
        c = _mm256_permute2f128_pd(ab0, cd0, 0x31);
        d = _mm256_permute2f128_pd(ab1, cd1, 0x31);
    }
    static RY_ALWAYS_INLINE Vector root(Vector v) { return _mm256_sqrt_pd(v); }
    /// Also where one is no number.
    static RY_ALWAYS_INLINE bool isAnyBelow(Vector v, double limit)
    {
        return _mm256_movemask_pd(_mm256_cmp_pd(v, _mm256_set1_pd(limit), _CMP_NGE_UQ)) != 0;
    }
};

} // namespace

void RyCageKernels::addAvx2(Task &task)
{
    RyCageLoop<Avx2Registers>{task}.run();
}

#pragma GCC pop_options

bool RyCageKernels::hasAvx2()
{
    static const bool has = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma");
    return has;
}

#else

void RyCageKernels::addAvx2(Task &task)
{
    addPlain(task);
}

bool RyCageKernels::hasAvx2()
{
    return false;
}

#endif
