#pragma once

#include "RyBenchmark.h"

#include <cstring>

/// How the time of operations grows from a tenth of a size to the size: what is linear takes ten times as long, and
/// more than `MostGrowth` times fails. The argument --short takes tenths of all sizes and one run, which checks the
/// results and judges no time; any other is a part of the names of what is to be measured.
class RyGrowth
{
public:
    static constexpr double MostGrowth = 13.0;

    RyGrowth(int argc, char **argv)
    {
        for (int i = 1; i < argc; ++i) {
            if (std::strcmp(argv[i], "--short") == 0)
                m_short = true;
            else
                m_wanted = argv[i];
        }
    }

    bool isShort() const { return m_short; }

    /// `time` makes a thing of a size, works on it and gives the milliseconds of the work; a negative number says that
    /// the result was wrong.
    void measure(const char *name, int size, const std::function<double(int size)> &time)
    {
        if (!std::strstr(name, m_wanted))
            return;
        const int runs = m_short ? 1 : 7;
        constexpr double Patience = 5000.0; // milliseconds after which slow operations are run no more
        const int large = m_short ? size / 10 : size;
        const int small = large / 10;
        std::vector<double> smallTimes, largeTimes;
        time(small); // warms up
        double spent = 0.0;
        for (int run = 0; run < runs && spent < Patience; ++run) {
            smallTimes.push_back(time(small));
            largeTimes.push_back(time(large));
            spent += largeTimes.back();
        }
        const bool right = *std::min_element(smallTimes.begin(), smallTimes.end()) >= 0.0 &&
                           *std::min_element(largeTimes.begin(), largeTimes.end()) >= 0.0;
        const double a = RyBenchmark::median(smallTimes);
        const double b = RyBenchmark::median(largeTimes);
        const bool steep = !m_short && b > MostGrowth * a;
        std::printf("%-44s %6d: %9.3f ms  %6d: %9.3f ms  times %.1f%s%s\n", name, small, a, large, b, b / a,
                    steep ? "  too steep" : "", right ? "" : "  WRONG RESULT");
        std::fflush(stdout);
        m_good = m_good && right && !steep;
    }

    /// For main.
    int exitCode() const { return m_good ? 0 : 1; }

private:
    bool m_short = false;
    const char *m_wanted = "";
    bool m_good = true;
};
