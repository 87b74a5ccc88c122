#pragma once

#include "RyBenchmark.h"

#include <ctime>
#include <functional>
#include <string>
#include <vector>

/// Times several ways of doing a thing in turns, so that the noise of the machine falls on all of them alike. Only
/// times of one run of turns are to be compared.
class RyRoundRobin
{
public:
    using Work = std::function<void()>;

    /// Returns its number. `around` calls what is timed, for what must stand ready and not be timed.
    size_t add(const std::string &name, Work work, std::function<void(const Work &)> around = {})
    {
        m_ways.push_back({name, std::move(work), {}, std::move(around), {}, {}});
        return m_ways.size() - 1;
    }
    /// What is done before each timed run of the way added last.
    void before(Work prepare) { m_ways.back().prepare = std::move(prepare); }

    /// Each way once to warm up, then so many turns; a way that takes less than `least` milliseconds is repeated within
    /// its turn.
    void run(int turns, double least = 0.0)
    {
        for (int turn = -1; turn < turns; ++turn) {
            for (Way &way : m_ways) {
                if (way.prepare)
                    way.prepare();
                Time time;
                if (way.around)
                    way.around([&] { time = timeOf(way.work, least); });
                else
                    time = timeOf(way.work, least);
                if (turn < 0)
                    continue;
                way.times.push_back(time.wall);
                way.cpuTimes.push_back(time.cpu);
            }
        }
    }

    /// In milliseconds.
    double median(size_t way) const { return RyBenchmark::median(m_ways[way].times); }
    double least(size_t way) const { return *std::min_element(m_ways[way].times.begin(), m_ways[way].times.end()); }
    double ratio(size_t way, size_t to) const { return median(way) / median(to); }
    /// Of the time that all threads of the process worked: it does not grow while others use the machine.
    double cpuMedian(size_t way) const { return RyBenchmark::median(m_ways[way].cpuTimes); }
    double cpuLeast(size_t way) const
    {
        return *std::min_element(m_ways[way].cpuTimes.begin(), m_ways[way].cpuTimes.end());
    }
    /// One line for each way: its median and its part of that of the first, then the same of the processors' time.
    void print() const
    {
        for (size_t i = 0; i < m_ways.size(); ++i)
            std::printf("  %-44s %9.3f ms %6.3f   cpu %9.3f ms %6.3f   least %9.3f ms\n", m_ways[i].name.c_str(),
                        median(i), ratio(i, 0), cpuMedian(i), cpuMedian(i) / cpuMedian(0), least(i));
    }

private:
    struct Time
    {
        double wall = 0.0;
        double cpu = 0.0;
    };
    struct Way
    {
        std::string name;
        Work work;
        Work prepare;
        std::function<void(const Work &)> around;
        std::vector<double> times;
        std::vector<double> cpuTimes;
    };

    static Time timeOf(const Work &work, double least)
    {
        const auto start = std::chrono::steady_clock::now();
        const std::clock_t cpu = std::clock();
        int calls = 0;
        double passed = 0.0;
        do {
            work();
            ++calls;
            passed = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
        } while (passed < least);
        return {passed / calls, double(std::clock() - cpu) * 1000.0 / CLOCKS_PER_SEC / calls};
    }

    std::vector<Way> m_ways;
};
