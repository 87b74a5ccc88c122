#include "rycore/io/RyUnitFactor.h"

#include <algorithm>
#include <cmath>

double ryUnitFactor(double nominal, double height)
{
    const double centimetres = nominal * height;
    if (!(height > 0.0) || !std::isfinite(centimetres) || (centimetres >= 54.0 && centimetres <= 540.0))
        return nominal;
    const double power = std::round(std::log10(170.0 / height));
    return std::pow(10.0, power);
}

double ryFigureHeight(double x, double y, double z)
{
    const double largest = std::max({x, y, z});
    return y > 0.01 * largest ? y : largest;
}
