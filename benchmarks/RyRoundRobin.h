#pragma once

#include "RyBenchmark.h"

#include <ctime>
#include <string>

/// Several ways of doing the same thing, timed in turns so that all meet the same noise.
class RyRoundRobin
{
public:
    void add(const std::string &name, std::function<void()> work)
    {
        m_ways.push_back({name, std::move(work), {}, {}, {}});
    }
    /// What is done before each timed run of the way added last.
    void before(std::function<void()> prepare) { m_ways.back().prepare = std::move(prepare); }

    void run(int turns)
    {
        for (int turn = -1; turn < turns; ++turn) {
            for (Way &way : m_ways) {
                if (way.prepare)
                    way.prepare();
                const double cpu = cpuMilliseconds();
                const double time = RyBenchmark::milliseconds(way.work);
                if (turn < 0) // the first turn warms up
                    continue;
                way.times.push_back(time);
                way.cpuTimes.push_back(cpuMilliseconds() - cpu);
            }
        }
    }

    double median(size_t way) const { return RyBenchmark::median(m_ways[way].times); }
    /// Of the time that all threads of the process worked: it does not grow while others use the machine.
    double cpuMedian(size_t way) const { return RyBenchmark::median(m_ways[way].cpuTimes); }
    /// One line for each way: its median and its part of that of the first, then the same of the processors' time.
    void print() const
    {
        for (size_t i = 0; i < m_ways.size(); ++i)
            std::printf("  %-44s %8.3f ms %6.3f   cpu %8.3f ms %6.3f\n", m_ways[i].name.c_str(), median(i),
                        median(i) / median(0), cpuMedian(i), cpuMedian(i) / cpuMedian(0));
    }

private:
    struct Way
    {
        std::string name;
        std::function<void()> work;
        std::function<void()> prepare;
        std::vector<double> times;
        std::vector<double> cpuTimes;
    };
    static double cpuMilliseconds() { return double(std::clock()) * 1000.0 / CLOCKS_PER_SEC; }

    std::vector<Way> m_ways;
};
