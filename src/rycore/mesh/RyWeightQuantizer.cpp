#include "rycore/mesh/RyWeightQuantizer.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

int RyWeightQuantizer::spreadRest(const double *weights, int count, double sum, quint16 *result)
{
    constexpr double full = RyWeightMap::FullWeight;
    int total = 0;
    int largest = 0;
    for (int i = 0; i < count; ++i) {
        const int weight = int(weights[i] / sum * full + 0.5);
        result[i] = quint16(weight);
        total += weight;
        if (weights[i] > weights[largest])
            largest = i;
    }
    for (int rest = RyWeightMap::FullWeight - total; rest != 0; rest -= rest > 0 ? 1 : -1) {
        const int step = rest > 0 ? 1 : -1;
        int place = largest;
        double most = -1.0;
        for (int i = 0; i < count; ++i) {
            const double left = step * (weights[i] / sum * full - double(result[i]));
            if (left > most && int(result[i]) + step >= 0) {
                most = left;
                place = i;
            }
        }
        result[place] = quint16(int(result[place]) + step);
    }
    return largest;
}

#if defined(__SSE2__)

namespace {

__m128d upper(__m128d a, __m128d b)
{
    return _mm_unpackhi_pd(a, b);
}

/// Of four, the first of equal ones.
int placeOfLargest(__m128d low, __m128d high)
{
    const __m128d even = _mm_unpacklo_pd(low, high);
    const __m128d odd = upper(low, high);
    const int isOdd = _mm_movemask_pd(_mm_cmpgt_pd(odd, even));
    const __m128d larger = _mm_max_pd(odd, even);
    const int isHigh = _mm_comigt_sd(upper(larger, larger), larger);
    static constexpr char places[8] = {0, 1, 0, 1, 2, 2, 3, 3};
    return places[4 * isHigh + isOdd];
}

} // namespace

int RyWeightQuantizer::spreadRestOfFour(const float *weights, quint16 *result)
{
    const __m128 all = _mm_loadu_ps(weights);
    const __m128d low = _mm_cvtps_pd(all);
    const __m128d high = _mm_cvtps_pd(_mm_movehl_ps(all, all));
    // One after the other, as whoever sums them up for the other way.
    __m128d sum = _mm_add_sd(_mm_add_sd(_mm_add_sd(low, upper(low, low)), high), upper(high, high));
    sum = _mm_unpacklo_pd(sum, sum);
    const __m128d full = _mm_set1_pd(RyWeightMap::FullWeight);
    const __m128d half = _mm_set1_pd(0.5);
    const __m128d scaledLow = _mm_mul_pd(_mm_div_pd(low, sum), full);
    const __m128d scaledHigh = _mm_mul_pd(_mm_div_pd(high, sum), full);
    __m128i whole = _mm_unpacklo_epi64(_mm_cvttpd_epi32(_mm_add_pd(scaledLow, half)),
                                       _mm_cvttpd_epi32(_mm_add_pd(scaledHigh, half)));
    const __m128i two = _mm_add_epi32(whole, _mm_shuffle_epi32(whole, 0x4e));
    int rest = RyWeightMap::FullWeight - _mm_cvtsi128_si32(_mm_add_epi32(two, _mm_shuffle_epi32(two, 0xb1)));
    // Whether there is a rest is as good as random, and once is nearly always enough: the first turn asks nothing.
    do {
        const int step = (rest > 0) - (rest < 0);
        const __m128d steps = _mm_set1_pd(step);
        const __m128d leftLow = _mm_mul_pd(steps, _mm_sub_pd(scaledLow, _mm_cvtepi32_pd(whole)));
        const __m128d leftHigh =
            _mm_mul_pd(steps, _mm_sub_pd(scaledHigh, _mm_cvtepi32_pd(_mm_shuffle_epi32(whole, 0x4e))));
        // Never one that would fall below zero: the four have more than nothing left in all, and a zero has nothing.
        const __m128i place = _mm_set1_epi32(placeOfLargest(leftLow, leftHigh));
        const __m128i isThere = _mm_cmpeq_epi32(place, _mm_setr_epi32(0, 1, 2, 3));
        whole = _mm_add_epi32(whole, _mm_and_si128(isThere, _mm_set1_epi32(step)));
        rest -= step;
    } while (rest != 0);
    // To 16 bits, which there is an instruction for with signs alone.
    const __m128i packed = _mm_packs_epi32(_mm_sub_epi32(whole, _mm_set1_epi32(32768)), _mm_setzero_si128());
    _mm_storel_epi64(reinterpret_cast<__m128i *>(result), _mm_xor_si128(packed, _mm_set1_epi16(-32768)));
    return placeOfLargest(low, high);
}

#else

int RyWeightQuantizer::spreadRestOfFour(const float *weights, quint16 *result)
{
    double doubles[4];
    double sum = 0.0;
    for (int i = 0; i < 4; ++i)
        sum += doubles[i] = double(weights[i]);
    return spreadRest(doubles, 4, sum, result);
}

#endif
