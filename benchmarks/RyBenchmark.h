#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <functional>
#include <vector>

/// Times two ways of doing the same thing in alternation, so that both meet the same noise, and prints medians and
/// ratio.
struct RyBenchmark
{
    static double milliseconds(const std::function<void()> &work)
    {
        const auto start = std::chrono::steady_clock::now();
        work();
        return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    }

    /// Of processor time of the calling thread: what other programs do meanwhile counts less than on the wall clock.
    static double threadMilliseconds(const std::function<void()> &work)
    {
        const auto now = [] {
            timespec time;
            clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
            return 1e3 * double(time.tv_sec) + 1e-6 * double(time.tv_nsec);
        };
        const double start = now();
        work();
        return now() - start;
    }

    static double median(std::vector<double> values)
    {
        std::sort(values.begin(), values.end());
        return values[values.size() / 2];
    }

    /// Prints "name: ours M ms, peer M ms, ours/peer R" and returns R.
    static double compare(const char *name, int runs, const std::function<void()> &ours, const char *peerName,
                          const std::function<void()> &peer)
    {
        std::vector<double> oursTimes, peerTimes;
        ours();
        peer();
        for (int run = 0; run < runs; ++run) {
            oursTimes.push_back(milliseconds(ours));
            peerTimes.push_back(milliseconds(peer));
        }
        const double a = median(oursTimes);
        const double b = median(peerTimes);
        std::printf("%s: ours %.3f ms, %s %.3f ms, ours/peer %.3f, peer/ours %.3f (medians of %d)\n", name, a, peerName,
                    b, a / b, b / a, runs);
        return a / b;
    }
};
