#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

/// Collects benchmarks named "operation/contender", each of whose iterations handles `itemsPerIteration` items, and
/// prints at the end, for each operation, every contender's median nanoseconds of CPU time an item, and the first
/// contender's over that of the fastest other.
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
        std::string name;
        /// Nanoseconds an item of each repetition, by contender.
        std::map<std::string, std::vector<double>> times;
    };
    /// By the number of the operation's family of benchmarks, which is the order of registration; the runs come in
    /// another.
    std::map<std::int64_t, Operation> mOperations;
};
