#pragma once

#include "rycore/math/RyVec3.h"
#include "support/RyTest.h"

#include <random>

/// Numbers by the seed of this run.
class RyRandom
{
public:
    RyRandom() : m_engine(ryTestSeed()) {}
    double number(double low, double high) { return std::uniform_real_distribution<double>(low, high)(m_engine); }
    int integer(int low, int high) { return std::uniform_int_distribution<int>(low, high)(m_engine); }
    bool chance(double p) { return number(0, 1) < p; }
    RyVec3 vector(double size = 10.0)
    {
        return {float(number(-size, size)), float(number(-size, size)), float(number(-size, size))};
    }
    std::mt19937 &engine() { return m_engine; }

private:
    std::mt19937 m_engine;
};
