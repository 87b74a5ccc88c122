#include "rycore/parametric/RyLegacyKernels.h"
#include "rycore/parametric/RyLegacyMotion.h"

#if defined(__x86_64__) && defined(__GNUC__)

#include <immintrin.h>

// What is compiled from here on may only run where RySkinKernels::hasAvx2().
#pragma GCC push_options
#pragma GCC target("avx2,fma")

#include "rycore/parametric/RyLegacyLoop.h"

namespace {

struct Avx2Registers
{
    using Vector = __m256d;

    static RY_ALWAYS_INLINE Vector spread(double number) { return _mm256_set1_pd(number); }
    static RY_ALWAYS_INLINE Vector read(const float *from) { return _mm256_cvtps_pd(_mm_loadu_ps(from)); }
    static RY_ALWAYS_INLINE Vector gather(const float *from, const int *offsets)
    {
        return _mm256_cvtps_pd(_mm_setr_ps(from[offsets[0]], from[offsets[1]], from[offsets[2]], from[offsets[3]]));
    }
    static RY_ALWAYS_INLINE void write(Vector v, float *to) { _mm_storeu_ps(to, _mm256_cvtpd_ps(v)); }
    static RY_ALWAYS_INLINE Vector load(const double *from) { return _mm256_loadu_pd(from); }
    static RY_ALWAYS_INLINE void store(Vector v, double *to) { _mm256_storeu_pd(to, v); }
    static RY_ALWAYS_INLINE Vector times(Vector a, Vector b) { return _mm256_mul_pd(a, b); }
    static RY_ALWAYS_INLINE Vector plus(Vector a, Vector b) { return _mm256_add_pd(a, b); }
    static RY_ALWAYS_INLINE Vector minus(Vector a, Vector b) { return _mm256_sub_pd(a, b); }
    static RY_ALWAYS_INLINE Vector timesPlus(Vector a, Vector b, Vector c) { return _mm256_fmadd_pd(a, b, c); }
    static RY_ALWAYS_INLINE Vector timesFrom(Vector a, Vector b, Vector c) { return _mm256_fnmadd_pd(a, b, c); }
    static RY_ALWAYS_INLINE Vector positive(Vector v) { return _mm256_max_pd(v, _mm256_setzero_pd()); }
};

} // namespace

void RyLegacyKernels::moveAvx2(const Task &task)
{
    moveTask<Avx2Registers>(task);
}

#pragma GCC pop_options

#else

void RyLegacyKernels::moveAvx2(const Task &task)
{
    movePlain(task);
}

#endif
