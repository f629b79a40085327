#pragma once

#include <algorithm>
#include <chrono>
#include <ctime>
#include <vector>

namespace Ombrique::Benchmarks {

/// What one run of something took, in milliseconds: by the wall's clock, and of all the process's threads.
struct Cost {
    double wall = 0;
    double cpu = 0;
};

inline double processCpuMilliseconds() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
}

template <typename Action> Cost measure(Action action) {
    const double cpu = processCpuMilliseconds();
    const auto start = std::chrono::steady_clock::now();
    action();
    const std::chrono::duration<double, std::milli> wall = std::chrono::steady_clock::now() - start;
    return {wall.count(), processCpuMilliseconds() - cpu};
}

/// Of a list that isn't empty; the upper one of the two in the middle.
inline double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// The median of one part of costs: `medianOf(costs, &Cost::wall)`.
inline double medianOf(const std::vector<Cost>& costs, double Cost::*part) {
    std::vector<double> values;
    for (const Cost& cost : costs)
        values.push_back(cost.*part);
    return median(std::move(values));
}

/// The median of the ratios of costs that were measured side by side.
inline double medianRatio(const std::vector<Cost>& numerators, const std::vector<Cost>& denominators,
                          double Cost::*part) {
    std::vector<double> ratios;
    for (std::size_t i = 0; i < numerators.size(); ++i)
        ratios.push_back(numerators[i].*part / denominators[i].*part);
    return median(std::move(ratios));
}

} // namespace Ombrique::Benchmarks
