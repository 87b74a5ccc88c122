#pragma once

#include "rycore/mesh/RyWeightMap.h"

#include <cmath>
#include <type_traits>

/// Makes of weights others in the same proportions, whole numbers with a sum of exactly `RyWeightMap::FullWeight`. Each
/// weight is scaled and rounded; the two rules differ in who takes the rest that this leaves.
namespace RyWeightQuantizer {

enum class Rounding {
    Nearest,
    Down // what is left is never below zero
};

/// So many weights, rounded to the nearest, never take more from the largest than it has.
inline constexpr size_t MostToNearest = 360;

/// The largest, the first of equal ones, takes what is left: every other weight is its true value rounded and depends
/// on nothing but itself and the sum. Weights come one by one: first all are added, then each is asked for.
template<class Weight>
class LargestTakesRest
{
public:
    /// `sum` of all weights, above zero.
    explicit LargestTakesRest(Weight sum, Rounding rounding = Rounding::Nearest) : m_sum(sum), m_rounding(rounding) {}

    /// `place` tells the weights apart.
    void add(size_t place, Weight weight)
    {
        m_rest -= rounded(weight);
        if (weight > m_largest) {
            m_largest = weight;
            m_largestPlace = place;
        }
    }
    quint16 quantized(size_t place, Weight weight) const
    {
        return quint16(rounded(weight) + (place == m_largestPlace ? m_rest : 0));
    }

private:
    qint64 rounded(Weight weight) const
    {
        const Weight scaled = weight * Weight(RyWeightMap::FullWeight);
        if constexpr (std::is_integral_v<Weight>)
            return qint64((scaled + (m_rounding == Rounding::Nearest ? m_sum / 2 : 0)) / m_sum);
        else
            return m_rounding == Rounding::Nearest ? std::lround(scaled / m_sum) : long(scaled / m_sum);
    }

    Weight m_sum;
    Rounding m_rounding;
    Weight m_largest = 0;
    size_t m_largestPlace = 0;
    qint64 m_rest = RyWeightMap::FullWeight;
};

/// Those that were rounded most take what is left, one each: no result is further than one from its true value, however
/// many there are. For weights that somebody else made, of which none may be bent to suit the others. `sum` of all
/// `count` weights, none below zero. Returns the place of the largest, the first of equal ones.
int spreadRest(const double *weights, int count, double sum, quint16 *result);

/// The same of four finite weights, of which one at least is above zero, at once and to the bit.
int spreadRestOfFour(const float *weights, quint16 *result);

} // namespace RyWeightQuantizer
