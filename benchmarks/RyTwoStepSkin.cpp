#include "RyTwoStepSkin.h"

#include "rycore/skin/RyParallel.h"

#include <cstring>

#if defined(__x86_64__) && defined(__GNUC__)
#include <immintrin.h>
#endif

struct RyTwoStepSkin::Arrays
{
    const RySkinWorkload &work;
    std::vector<unsigned> triangles;
    std::vector<int> vertices;
    std::vector<quint32> offsets; // in bytes
    std::vector<RySkinKernels::Delta> deltas;
    std::vector<RyVec3> blended;
    std::vector<RyVec3> ofObject;
    std::vector<RyVec3> ofPicture;
    std::vector<RyVec3> normals;
    std::vector<RyVec3> picture;

    void blend(size_t begin, size_t end);
    void blendPlain(size_t begin, size_t end);
#if defined(__x86_64__) && defined(__GNUC__)
    __attribute__((target("avx2,fma"))) void blendAvx2(size_t begin, size_t end);
#endif
};

void RyTwoStepSkin::Arrays::blendPlain(size_t begin, size_t end)
{
    for (size_t v = begin; v < end; ++v) {
        float rows[12] = {};
        for (size_t k = 4 * v; k < 4 * (v + 1); ++k) {
            const float *delta = deltas[offsets[k] / sizeof(RySkinKernels::Delta)].rows;
            for (size_t i = 0; i < 12; ++i)
                rows[i] += work.weights[k] * delta[4 * (i / 3) + i % 3];
        }
        const RyVec3 p = work.positions[v];
        blended[v] = p + RyVec3(p.x * rows[0] + p.y * rows[3] + p.z * rows[6] + rows[9],
                                p.x * rows[1] + p.y * rows[4] + p.z * rows[7] + rows[10],
                                p.x * rows[2] + p.y * rows[5] + p.z * rows[8] + rows[11]);
    }
}

#if defined(__x86_64__) && defined(__GNUC__)
void RyTwoStepSkin::Arrays::blendAvx2(size_t begin, size_t end)
{
    const char *const rows = reinterpret_cast<const char *>(deltas.data());
    const __m128i three = _mm_setr_epi32(-1, -1, -1, 0);
    const __m256i pickXy = _mm256_setr_epi32(0, 0, 0, 0, 1, 1, 1, 1);
    const __m256i pickZ1 = _mm256_setr_epi32(2, 2, 2, 2, 3, 3, 3, 3);
    for (size_t v = begin; v < end; ++v) {
        __m256 xy = _mm256_setzero_ps();
        __m256 zt = _mm256_setzero_ps();
        const __m256 four = _mm256_broadcast_ps(reinterpret_cast<const __m128 *>(&work.weights[4 * v]));
        const __m256 weights[4] = {_mm256_permute_ps(four, 0x00), _mm256_permute_ps(four, 0x55),
                                   _mm256_permute_ps(four, 0xaa), _mm256_permute_ps(four, 0xff)};
#pragma GCC unroll 4
        for (size_t k = 0; k < 4; ++k) {
            const float *delta = reinterpret_cast<const float *>(rows + offsets[4 * v + k]);
            xy = _mm256_fmadd_ps(weights[k], _mm256_load_ps(delta), xy);
            zt = _mm256_fmadd_ps(weights[k], _mm256_load_ps(delta + 8), zt);
        }
        const auto vertex = size_t(vertices[v]);
        const __m128 p = _mm_blend_ps(_mm_maskload_ps(&work.positions[vertex].x, three), _mm_set1_ps(1.0f), 8);
        const __m256 twice = _mm256_set_m128(p, p);
        const __m256 both = _mm256_fmadd_ps(_mm256_permutevar_ps(twice, pickXy), xy,
                                            _mm256_mul_ps(_mm256_permutevar_ps(twice, pickZ1), zt));
        const __m128 moved = _mm_add_ps(p, _mm_add_ps(_mm256_castps256_ps128(both), _mm256_extractf128_ps(both, 1)));
        _mm_storel_pi(reinterpret_cast<__m64 *>(&blended[vertex].x), moved);
        _mm_store_ss(&blended[vertex].z, _mm_movehl_ps(moved, moved));
    }
}
#endif

void RyTwoStepSkin::Arrays::blend(size_t begin, size_t end)
{
#if defined(__x86_64__) && defined(__GNUC__)
    if (RySkinKernels::hasAvx2())
        return blendAvx2(begin, end);
#endif
    blendPlain(begin, end);
}

RyTwoStepSkin::RyTwoStepSkin(const RySkinWorkload &work, std::vector<unsigned> triangles)
    : m_arrays(new Arrays{work, std::move(triangles), {}, {}, {}, work.positions, {}, {}, {}, {}})
{
    for (int v = 0; v < work.vertexCount; ++v)
        m_arrays->vertices.push_back(v);
    for (quint16 bone : work.bones)
        m_arrays->offsets.push_back(quint32(bone * sizeof(RySkinKernels::Delta)));
    m_arrays->deltas.resize(RySkinWorkload::Bones);
}

RyTwoStepSkin::~RyTwoStepSkin() = default;

void RyTwoStepSkin::blendPositions(int pose)
{
    for (size_t k = 0; k < m_arrays->deltas.size(); ++k) {
        for (int i = 0; i < 4; ++i) {
            for (int j = 0; j < 3; ++j) {
                const double value = m_arrays->work.maps[pose][k].m[i][j] - (i == j ? 1.0 : 0.0);
                m_arrays->deltas[k].rows[4 * i + j] = float(value);
            }
        }
    }
    constexpr size_t blockSize = 128;
    const size_t count = m_arrays->blended.size();
    RyParallel::forRanges((count + blockSize - 1) / blockSize, 16, [&](size_t begin, size_t end) {
        m_arrays->blend(begin * blockSize, std::min(end * blockSize, count));
    });
}

void RyTwoStepSkin::makePicture(int pose)
{
    Arrays &its = *m_arrays;
    blendPositions(pose);
    its.ofObject = its.blended;
    if (its.ofPicture.size() == its.ofObject.size() &&
        std::memcmp(its.ofPicture.data(), its.ofObject.data(), its.ofObject.size() * sizeof(RyVec3)) == 0)
        return;
    its.ofPicture = its.ofObject;
    const std::vector<RyVec3> &positions = its.ofPicture;
    its.normals = std::vector<RyVec3>(positions.size());
    for (size_t i = 0; i + 2 < its.triangles.size(); i += 3) {
        const unsigned *corner = &its.triangles[i];
        const RyVec3 &a = positions[corner[0]];
        const RyVec3 u = positions[corner[1]] - a;
        const RyVec3 v = positions[corner[2]] - a;
        const RyVec3 area(u.y * v.z - u.z * v.y, u.z * v.x - u.x * v.z, u.x * v.y - u.y * v.x);
        for (int c = 0; c < 3; ++c)
            its.normals[corner[c]] += area;
    }
    for (RyVec3 &n : its.normals)
        n = n / std::sqrt(n.x * n.x + n.y * n.y + n.z * n.z);
    its.picture = std::vector<RyVec3>(2 * positions.size());
    for (size_t v = 0; v < positions.size(); ++v) {
        its.picture[2 * v] = positions[v];
        its.picture[2 * v + 1] = its.normals[v];
    }
}

const std::vector<RyVec3> &RyTwoStepSkin::positions() const
{
    return m_arrays->blended;
}

const std::vector<RyVec3> &RyTwoStepSkin::picture() const
{
    return m_arrays->picture;
}
