#include "rycore/skin/RySkinKernels.h"

#if defined(__x86_64__) && defined(__GNUC__)

#include <immintrin.h>

#include <cstring>
#include <limits>

// What is compiled from here on may only run where hasAvx2().
#pragma GCC push_options
#pragma GCC target("avx2,fma")

#include "rycore/skin/RySkinLoop.h"

namespace {

/// Sums and products are written so that no compiler may round them in another way here and there.
struct Avx2Registers
{
    static constexpr int Group = 8;
    using Vector = __m128;

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
            const __m256 first = _mm256_blend_ps(_mm256_broadcast_ss(&from->x), _mm256_broadcast_ss(&from->y), 0xf0);
            const __m256 second = _mm256_blend_ps(_mm256_broadcast_ss(&from->z), _mm256_set1_ps(1.0f), 0xf0);
            const __m256 both = _mm256_fmadd_ps(first, xy, _mm256_mul_ps(second, zt));
            return _mm_add_ps(_mm256_castps256_ps128(both), _mm256_extractf128_ps(both, 1));
        }
        template<bool Exact>
        RY_ALWAYS_INLINE __m128 movedDirection(const RyVec3 *from) const
        {
            const __m256 first = _mm256_blend_ps(_mm256_broadcast_ss(&from->x), _mm256_broadcast_ss(&from->y), 0xf0);
            const __m256 both = _mm256_mul_ps(first, xy);
            const __m128 low =
                _mm_fmadd_ps(_mm_broadcast_ss(&from->z), _mm256_castps256_ps128(zt), _mm256_castps256_ps128(both));
            return _mm_add_ps(low, _mm256_extractf128_ps(both, 1));
        }
    };

    template<bool Exact>
    static RY_ALWAYS_INLINE __m128 read(const RyVec3 *from)
    {
        return Exact ? _mm_maskload_ps(&from->x, _mm_setr_epi32(-1, -1, -1, 0)) : _mm_loadu_ps(&from->x);
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

    /// Zero stays zero.
    static RY_ALWAYS_INLINE void makeUnits(__m128 (&v)[8])
    {
        // Vectors k and k + 4 share a register.
        __m256 pairs[4];
#pragma GCC unroll 4
        for (int k = 0; k < 4; ++k)
            pairs[k] = _mm256_set_m128(v[k + 4], v[k]);
        const __m256 xy01 = _mm256_unpacklo_ps(pairs[0], pairs[1]);
        const __m256 xy23 = _mm256_unpacklo_ps(pairs[2], pairs[3]);
        const __m256 z01 = _mm256_unpackhi_ps(pairs[0], pairs[1]);
        const __m256 z23 = _mm256_unpackhi_ps(pairs[2], pairs[3]);
        const __m256 x = _mm256_shuffle_ps(xy01, xy23, 0x44);
        const __m256 y = _mm256_shuffle_ps(xy01, xy23, 0xee);
        const __m256 z = _mm256_shuffle_ps(z01, z23, 0x44);
        const __m256 squares = _mm256_fmadd_ps(z, z, _mm256_fmadd_ps(y, y, _mm256_mul_ps(x, x)));
        // An estimate and one step of Newton's: as good as a root and a division to the last bit or two.
        const __m256 safe = _mm256_max_ps(squares, _mm256_set1_ps(std::numeric_limits<float>::min()));
        const __m256 guess = _mm256_rsqrt_ps(safe);
        const __m256 half = _mm256_mul_ps(_mm256_mul_ps(safe, _mm256_set1_ps(0.5f)), guess);
        const __m256 factors = _mm256_mul_ps(guess, _mm256_fnmadd_ps(half, guess, _mm256_set1_ps(1.5f)));
        pairs[0] = _mm256_mul_ps(pairs[0], _mm256_permute_ps(factors, 0x00));
        pairs[1] = _mm256_mul_ps(pairs[1], _mm256_permute_ps(factors, 0x55));
        pairs[2] = _mm256_mul_ps(pairs[2], _mm256_permute_ps(factors, 0xaa));
        pairs[3] = _mm256_mul_ps(pairs[3], _mm256_permute_ps(factors, 0xff));
#pragma GCC unroll 4
        for (int k = 0; k < 4; ++k) {
            v[k] = _mm256_castps256_ps128(pairs[k]);
            v[k + 4] = _mm256_extractf128_ps(pairs[k], 1);
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
