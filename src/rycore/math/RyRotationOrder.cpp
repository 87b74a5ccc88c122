#include "rycore/math/RyRotationOrder.h"

namespace {

constexpr int Axes[6][3] = {{0, 1, 2}, {0, 2, 1}, {1, 0, 2}, {1, 2, 0}, {2, 0, 1}, {2, 1, 0}};
constexpr const char *Names[6] = {"XYZ", "XZY", "YXZ", "YZX", "ZXY", "ZYX"};

} // namespace

RyRotationOrder RyRotationOrder::fromAxes(int a, int b, int c)
{
    for (int code = XYZ; code <= ZYX; ++code) {
        if (Axes[code][0] == a && Axes[code][1] == b && Axes[code][2] == c)
            return RyRotationOrder(code);
    }
    return RyRotationOrder();
}

int RyRotationOrder::operator[](int index) const
{
    return Axes[m_code][index];
}

void RyRotationOrder::getAxisOrder(int &first, int &second, int &third) const
{
    first = Axes[m_code][0];
    second = Axes[m_code][1];
    third = Axes[m_code][2];
}

QString RyRotationOrder::name() const
{
    return QLatin1String(Names[m_code]);
}
