#include "rycore/skin/RySkinKernels.h"

#include <Eigen/Core>

#if defined(__x86_64__) && defined(__GNUC__)
#define RY_HAVE_AVX2_KERNEL 1
#include <immintrin.h>
#endif

void RySkinKernels::blendPlain(const Task &task)
{
    using Row = Eigen::Array4f;
    using Rows = Eigen::Map<const Eigen::Array<float, 4, 4>, Eigen::Aligned64>; // a column of it is a row of the map
    const quint32 *offsets = task.offsets;
    const float *weights = task.weights;
    for (int i = 0; i < task.count; ++i) {
        Row x = Row::Zero();
        Row y = Row::Zero();
        Row z = Row::Zero();
        Row t = Row::Zero();
        for (int k = 0; k < task.influences; ++k) {
            const Rows delta(task.deltas + *offsets++ / sizeof(float));
            const float weight = *weights++;
            x += weight * delta.col(0);
            y += weight * delta.col(1);
            z += weight * delta.col(2);
            t += weight * delta.col(3);
        }
        const RyVec3 v = task.rest[task.vertices[i]];
        const Row move = v.x * x + v.y * y + v.z * z + t;
        task.out[task.vertices[i]] = v + RyVec3(move[0], move[1], move[2]);
    }
}

#ifdef RY_HAVE_AVX2_KERNEL

namespace {

/// `Influences` 0: as many as the task says.
template<int Influences>
__attribute__((target("avx2,fma"))) void blend(const RySkinKernels::Task &task)
{
    const int influences = Influences > 0 ? Influences : task.influences;
    const int count = task.count;
    const RyVec3 *const rest = task.rest;
    RyVec3 *const out = task.out;
    const char *const deltas = reinterpret_cast<const char *>(task.deltas);
    const int *const vertices = task.vertices;
    const quint32 *offsets = task.offsets;
    const float *weights = task.weights;
    const __m128i three = _mm_setr_epi32(-1, -1, -1, 0);
    const __m128 one = _mm_set1_ps(1.0f);
    const __m256i pickXy = _mm256_setr_epi32(0, 0, 0, 0, 1, 1, 1, 1);
    const __m256i pickZ1 = _mm256_setr_epi32(2, 2, 2, 2, 3, 3, 3, 3);
    for (int i = 0; i < count; ++i) {
        // Two rows to a register: the images of X and Y, of Z and the translation.
        __m256 xy = _mm256_setzero_ps();
        __m256 zt = _mm256_setzero_ps();
        if constexpr (Influences == 4) {
            // The common case reads all its weights with one load.
            const __m256 four = _mm256_broadcast_ps(reinterpret_cast<const __m128 *>(weights));
            const auto add = [&](__m256 weight, quint32 offset) __attribute__((target("avx2,fma"), always_inline))
            {
                const float *delta = reinterpret_cast<const float *>(deltas + offset);
                xy = _mm256_fmadd_ps(weight, _mm256_load_ps(delta), xy);
                zt = _mm256_fmadd_ps(weight, _mm256_load_ps(delta + 8), zt);
            };
            add(_mm256_permute_ps(four, 0x00), offsets[0]);
            add(_mm256_permute_ps(four, 0x55), offsets[1]);
            add(_mm256_permute_ps(four, 0xaa), offsets[2]);
            add(_mm256_permute_ps(four, 0xff), offsets[3]);
        } else {
            for (int k = 0; k < influences; ++k) {
                const float *delta = reinterpret_cast<const float *>(deltas + offsets[k]);
                const __m256 weight = _mm256_broadcast_ss(weights + k);
                xy = _mm256_fmadd_ps(weight, _mm256_load_ps(delta), xy);
                zt = _mm256_fmadd_ps(weight, _mm256_load_ps(delta + 8), zt);
            }
        }
        offsets += influences;
        weights += influences;

        const size_t vertex = size_t(vertices[i]);
        const __m128 v = _mm_blend_ps(_mm_maskload_ps(&rest[vertex].x, three), one, 8);
        const __m256 twice = _mm256_set_m128(v, v);
        const __m256 both = _mm256_fmadd_ps(_mm256_permutevar_ps(twice, pickXy), xy,
                                            _mm256_mul_ps(_mm256_permutevar_ps(twice, pickZ1), zt));
        const __m128 moved = _mm_add_ps(v, _mm_add_ps(_mm256_castps256_ps128(both), _mm256_extractf128_ps(both, 1)));
        float *to = &out[vertex].x;
        _mm_storel_pi(reinterpret_cast<__m64 *>(to), moved);
        _mm_store_ss(to + 2, _mm_movehl_ps(moved, moved));
    }
}

} // namespace

void RySkinKernels::blendAvx2(const Task &task)
{
    switch (task.influences) {
    case 1:
        return blend<1>(task);
    case 2:
        return blend<2>(task);
    case 3:
        return blend<3>(task);
    case 4:
        return blend<4>(task);
    case 5:
        return blend<5>(task);
    case 6:
        return blend<6>(task);
    default:
        return blend<0>(task);
    }
}

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
