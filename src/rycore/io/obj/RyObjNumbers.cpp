#include "rycore/io/obj/RyObjNumbers.h"

#include <charconv>
#include <cmath>

double RyObjNumbers::shortest(float number)
{
    char digits[64];
    const std::to_chars_result text = std::to_chars(digits, digits + sizeof(digits), number);
    double result = double(number);
    std::from_chars(digits, text.ptr, result);
    return result;
}

double RyObjNumbers::inUnits(float centimetres, double unit)
{
    const double exact = double(centimetres) / unit;
    for (int digits = 6; digits < 10; ++digits) {
        char text[64];
        const std::to_chars_result end =
            std::to_chars(text, text + sizeof(text), exact, std::chars_format::general, digits);
        double number = exact;
        std::from_chars(text, end.ptr, number);
        if (float(number * unit) == centimetres)
            return number;
    }
    return exact;
}

double RyObjNumbers::upwards(float v)
{
    const double exact = 1.0 - double(v);
    for (double digits = 1e5; digits < 1e10; digits *= 10.0) {
        const double rounded = std::round(exact * digits) / digits;
        if (float(1.0 - rounded) == v)
            return rounded;
    }
    return exact;
}
