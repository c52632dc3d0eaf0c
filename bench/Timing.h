// How the benchmarks time a piece of work and sum up its runs.
#pragma once

#include <algorithm>
#include <chrono>
#include <ctime>
#include <vector>

namespace bench {

/// Seconds on the clock: for work that waits, or that takes more than one thread.
template <class Work>
double secondsOnClock(Work work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// Seconds of the processor: on a busy machine the time on the clock grows with the length of the run.
template <class Work>
double secondsOfProcessor(Work work)
{
    const std::clock_t start = std::clock();
    work();
    return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

inline double median(std::vector<double> values)
{
    std::nth_element(values.begin(), values.begin() + static_cast<long>(values.size() / 2), values.end());
    return values[values.size() / 2];
}

inline double smallest(const std::vector<double>& values)
{
    return *std::min_element(values.begin(), values.end());
}

}  // namespace bench
