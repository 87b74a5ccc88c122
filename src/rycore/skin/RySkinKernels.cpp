#include "rycore/skin/RySkinKernels.h"

#if defined(__x86_64__) && defined(__GNUC__)
#define RY_HAVE_AVX2_KERNEL 1
#include <immintrin.h>
#endif

void RySkinKernels::blendScalar(const Task &task)
{
    const quint16 *channels = task.channels;
    const float *weights = task.weights;
    for (int i = 0; i < task.count; ++i) {
        float m[12] = {};
        for (int k = 0; k < task.influences; ++k) {
            const float *delta = task.deltas + 16 * size_t(*channels++);
            const float weight = *weights++;
            for (int row = 0; row < 4; ++row) {
                for (int column = 0; column < 3; ++column)
                    m[3 * row + column] += weight * delta[4 * row + column];
            }
        }
        const RyVec3 v = task.rest[task.vertices[i]];
        task.out[task.vertices[i]] = {v.x + (v.x * m[0] + v.y * m[3] + v.z * m[6] + m[9]),
                                      v.y + (v.x * m[1] + v.y * m[4] + v.z * m[7] + m[10]),
                                      v.z + (v.x * m[2] + v.y * m[5] + v.z * m[8] + m[11])};
    }
}

#ifdef RY_HAVE_AVX2_KERNEL

namespace {

/// `Influences` 0: as many as the task says.
template<int Influences>
__attribute__((target("avx2,fma"))) void blend(const RySkinKernels::Task &task)
{
    const int influences = Influences > 0 ? Influences : task.influences;
    const quint16 *channels = task.channels;
    const float *weights = task.weights;
    const __m128i three = _mm_setr_epi32(-1, -1, -1, 0);
    const __m128 one = _mm_set1_ps(1.0f);
    for (int i = 0; i < task.count; ++i) {
        // Two rows to a register: the images of X and Y, of Z and the translation.
        const float *delta = task.deltas + 16 * size_t(channels[0]);
        __m256 weight = _mm256_broadcast_ss(weights);
        __m256 xy = _mm256_mul_ps(weight, _mm256_loadu_ps(delta));
        __m256 zt = _mm256_mul_ps(weight, _mm256_loadu_ps(delta + 8));
        for (int k = 1; k < influences; ++k) {
            delta = task.deltas + 16 * size_t(channels[k]);
            weight = _mm256_broadcast_ss(weights + k);
            xy = _mm256_fmadd_ps(weight, _mm256_loadu_ps(delta), xy);
            zt = _mm256_fmadd_ps(weight, _mm256_loadu_ps(delta + 8), zt);
        }
        channels += influences;
        weights += influences;

        const int vertex = task.vertices[i];
        const __m128 v = _mm_maskload_ps(&task.rest[vertex].x, three);
        const __m256 vxy = _mm256_set_m128(_mm_permute_ps(v, 0x55), _mm_permute_ps(v, 0x00));
        const __m256 vz1 = _mm256_set_m128(one, _mm_permute_ps(v, 0xaa));
        const __m256 both = _mm256_fmadd_ps(vxy, xy, _mm256_mul_ps(vz1, zt));
        const __m128 moved = _mm_add_ps(v, _mm_add_ps(_mm256_castps256_ps128(both), _mm256_extractf128_ps(both, 1)));
        float *out = &task.out[vertex].x;
        _mm_storel_pi(reinterpret_cast<__m64 *>(out), moved);
        _mm_store_ss(out + 2, _mm_movehl_ps(moved, moved));
    }
}

} // namespace

void RySkinKernels::blendAvx2(const Task &task)
{
    switch (task.influences) {
    case 1: return blend<1>(task);
    case 2: return blend<2>(task);
    case 3: return blend<3>(task);
    case 4: return blend<4>(task);
    case 5: return blend<5>(task);
    case 6: return blend<6>(task);
    default: return blend<0>(task);
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
    blendScalar(task);
}

bool RySkinKernels::hasAvx2()
{
    return false;
}

#endif
