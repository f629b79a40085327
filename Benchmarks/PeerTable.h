#pragma once

#include <benchmark/benchmark.h>

#include <limits>
#include <map>
#include <string>
#include <vector>

/// Collects benchmarks named "operation/contender", each of whose iterations handles `itemsPerIteration` items, and
/// prints at the end, for each operation, every contender's median nanoseconds of CPU time an item, and the first
/// contender's over that of the fastest other;
/// nan stands for one that wasn't run.
class PeerTable : public benchmark::BenchmarkReporter {
public:
    PeerTable(std::vector<std::string> contenders, std::size_t itemsPerIteration)
        : mContenders(std::move(contenders)), mItemsPerIteration(itemsPerIteration) {}

    bool ReportContext(const Context& context) override;
    void ReportRuns(const std::vector<Run>& runs) override;
    void Finalize() override;

private:
    std::vector<std::string> mContenders;
    std::size_t mItemsPerIteration;
    struct Operation {
        /// The lowest number of its benchmarks: the runs come in any order, the numbers follow that of registration.
        std::int64_t firstFamily = std::numeric_limits<std::int64_t>::max();
        /// Nanoseconds an item of each repetition, by contender.
        std::map<std::string, std::vector<double>> times;
    };
    std::map<std::string, Operation> mOperations;
};
