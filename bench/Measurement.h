#ifndef BREVAN_BENCH_MEASUREMENT_H
#define BREVAN_BENCH_MEASUREMENT_H

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

namespace brevan::bench {

/// One figure beside the limit that it is compared with, both of the same run. The goal is about measured / limit: "<= 3" or
/// ">= 0.3". scripts/bench.sh does the comparing.
inline void report(const std::string& name, double measured, double limit, const std::string& unit, const std::string& goal)
{
    std::printf("%s\t%.6g\t%.6g\t%s\t%s\n", name.c_str(), measured, limit, unit.c_str(), goal.c_str());
    std::fflush(stdout);
}

/// How long `work` takes, in microseconds.
template <typename Work>
double microseconds(Work work)
{
    const auto begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - begin).count();
}

inline double median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

}  // namespace brevan::bench

#endif
