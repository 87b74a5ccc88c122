#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

/// What the memory gives: a = b + 3 c over three arrays of so many bytes together, written through the cache or past
/// it.
class RyTriad
{
public:
    explicit RyTriad(size_t bytes) : m_count(bytes / 12 / 64 * 64)
    {
        // Apart by other numbers than powers of two, which would meet in the same lines of the cache.
        m_memory.assign(3 * m_count + 5000, 1.0f);
        m_to = m_memory.data() + (64 - (reinterpret_cast<std::uintptr_t>(m_memory.data()) & 63)) / sizeof(float) % 16;
        m_b = m_to + m_count + 1104;
        m_c = m_b + m_count + 1104;
    }
    size_t bytes() const { return 12 * m_count; }
    size_t count() const { return m_count; }

    /// From and to in steps of 64.
    void run(size_t from, size_t to)
    {
#if defined(__SSE2__)
        const __m128 three = _mm_set1_ps(3.0f);
        for (size_t i = from; i < to; i += 4)
            _mm_store_ps(m_to + i, _mm_add_ps(_mm_load_ps(m_b + i), _mm_mul_ps(three, _mm_load_ps(m_c + i))));
#else
        for (size_t i = from; i < to; ++i)
            m_to[i] = m_b[i] + 3.0f * m_c[i];
#endif
    }
    void runPastCache(size_t from, size_t to)
    {
#if defined(__SSE2__)
        const __m128 three = _mm_set1_ps(3.0f);
        for (size_t i = from; i < to; i += 4)
            _mm_stream_ps(m_to + i, _mm_add_ps(_mm_load_ps(m_b + i), _mm_mul_ps(three, _mm_load_ps(m_c + i))));
        _mm_sfence();
#else
        run(from, to);
#endif
    }

private:
    size_t m_count;
    std::vector<float> m_memory;
    float *m_to;
    float *m_b;
    float *m_c;
};
