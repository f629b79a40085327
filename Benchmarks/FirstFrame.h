#pragma once

#include <benchmark/benchmark.h>

namespace Ombrique::Benchmarks {

/// From nothing loaded to the first frame, each time in a process of its own, with the driver's cache on disk filled.
/// The arguments are width and height. The counters are medians in milliseconds, by the wall and (`_cpu`) of all
/// threads: loading the bundle, set-up (EGL, the shared context), the first frame (the thread's context, the programs,
/// the targets), and for comparison the second. Must run before any other benchmark: a process that has loaded a driver
/// can't be forked.
void firstFrame(benchmark::State& state);

} // namespace Ombrique::Benchmarks
