#include "rycore/skin/RySkinKernels.h"

#if defined(__x86_64__) && defined(__GNUC__)

#include <immintrin.h>

// What is compiled from here on may only run where hasAvx2().
#pragma GCC push_options
#pragma GCC target("avx2,fma")

#include "rycore/skin/RySkinLoop.h"

namespace {

/// Sums and products are written so that no compiler may round them in another way here and there.
struct Avx2Registers
{

    struct Matrix
    {
        // Two rows to a register: the images of X and Y, of Z and the translation.
        __m256 xy, zt;

        template<int Influences, class Offset>
        RY_ALWAYS_INLINE void blend(const RySkinKernels::Delta *deltas, const Offset *offsets, const float *weights,
                                    int influences)
        {
            xy = _mm256_setr_ps(1, 0, 0, 0, 0, 1, 0, 0);
            zt = _mm256_setr_ps(0, 0, 1, 0, 0, 0, 0, 0);
            if constexpr (Influences == 4) {
                // The common case reads all its weights at once.
                const __m256 all = _mm256_broadcast_ps(reinterpret_cast<const __m128 *>(weights));
                add(deltas, offsets[0], _mm256_permute_ps(all, 0x00));
                add(deltas, offsets[1], _mm256_permute_ps(all, 0x55));
                add(deltas, offsets[2], _mm256_permute_ps(all, 0xaa));
                add(deltas, offsets[3], _mm256_permute_ps(all, 0xff));
            } else {
#pragma GCC unroll 4
                for (int k = 0; k < (Influences > 0 ? Influences : influences); ++k)
                    add(deltas, offsets[k], _mm256_broadcast_ss(weights + k));
            }
        }
        RY_ALWAYS_INLINE void add(const RySkinKernels::Delta *deltas, size_t offset, __m256 weight)
        {
            const float *rows = reinterpret_cast<const float *>(reinterpret_cast<const char *>(deltas) + 8 * offset);
            xy = _mm256_fmadd_ps(weight, _mm256_load_ps(rows), xy);
            zt = _mm256_fmadd_ps(weight, _mm256_load_ps(rows + 8), zt);
        }

        template<bool Exact>
        RY_ALWAYS_INLINE __m128 movedPoint(const RyVec3 *from) const
        {
            const __m256 v = readTwice<Exact>(from);
            const __m256 first = spreadXy(v);
            const __m256 second = _mm256_blend_ps(_mm256_permute_ps(v, 0xaa), _mm256_set1_ps(1.0f), 0xf0);
            const __m256 both = _mm256_fmadd_ps(first, xy, _mm256_mul_ps(second, zt));
            return _mm_add_ps(_mm256_castps256_ps128(both), _mm256_extractf128_ps(both, 1));
        }
        template<bool Exact>
        RY_ALWAYS_INLINE __m128 movedDirection(const RyVec3 *from) const
        {
            const __m256 v = readTwice<Exact>(from);
            const __m256 both = _mm256_mul_ps(spreadXy(v), xy);
            const __m128 z = _mm256_castps256_ps128(_mm256_permute_ps(v, 0xaa));
            const __m128 low = _mm_fmadd_ps(z, _mm256_castps256_ps128(zt), _mm256_castps256_ps128(both));
            return _mm_add_ps(low, _mm256_extractf128_ps(both, 1));
        }
    };

    /// Into both halves at once: reading is what the loop waits for.
    template<bool Exact>
    static RY_ALWAYS_INLINE __m256 readTwice(const RyVec3 *from)
    {
        if constexpr (Exact) {
            const __m128 v = _mm_maskload_ps(&from->x, _mm_setr_epi32(-1, -1, -1, 0));
            return _mm256_set_m128(v, v);
        } else {
            return _mm256_broadcast_ps(reinterpret_cast<const __m128 *>(from));
        }
    }
    /// x in the lower half, y in the upper one.
    static RY_ALWAYS_INLINE __m256 spreadXy(__m256 v)
    {
        return _mm256_permutevar_ps(v, _mm256_setr_epi32(0, 0, 0, 0, 1, 1, 1, 1));
    }

    template<bool Exact>
    static RY_ALWAYS_INLINE void write(RyVec3 *to, __m128 v)
    {
        if constexpr (Exact) {
            _mm_storel_pi(reinterpret_cast<__m64 *>(&to->x), v);
            _mm_store_ss(&to->z, _mm_movehl_ps(v, v));
        } else {
            _mm_storeu_ps(&to->x, v);
        }
    }
};

} // namespace

void RySkinKernels::blendAvx2(const Task &task)
{
    blendTask<Avx2Registers>(task);
}

#pragma GCC pop_options

bool RySkinKernels::hasAvx2()
{
    static const bool has = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma");
    return has;
}

#else

void RySkinKernels::blendAvx2(const Task &task)
{
    blendPlain(task);
}

bool RySkinKernels::hasAvx2()
{
    return false;
}

#endif
