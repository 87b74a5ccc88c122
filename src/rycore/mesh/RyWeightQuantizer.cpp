#include "rycore/mesh/RyWeightQuantizer.h"

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
