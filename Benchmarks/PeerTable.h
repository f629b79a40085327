#pragma once

#include <benchmark/benchmark.h>

#include <limits>
#include <map>
#include <string>
#include <vector>

/// Collects benchmarks named "operation/contender", each of whose iterations handles `itemsPerIteration` items, and
/// prints a line for each operation at the end: every contender's nanoseconds of CPU time an item, the first
/// contender's over that of the fastest other, and the least and the most of that ratio in thirds of the repetitions;
/// behind it the operation's remark, if any. nan stands for a contender that wasn't run.
///
/// Times are the tenth percentiles of the repetitions: on a machine that does other work too, medians move by half from
/// run to run.
class PeerTable : public benchmark::BenchmarkReporter {
public:
    using Remarks = std::map<std::string, std::string>;

    PeerTable(std::vector<std::string> contenders, std::size_t itemsPerIteration, Remarks remarks)
        : mContenders(std::move(contenders)), mItemsPerIteration(itemsPerIteration), mRemarks(std::move(remarks)) {}

    bool ReportContext(const Context& context) override;
    void ReportRuns(const std::vector<Run>& runs) override;
    void Finalize() override;

private:
    struct Operation {
        /// The lowest number of its benchmarks: the runs come in any order, the numbers follow that of registration.
        std::int64_t firstFamily = std::numeric_limits<std::int64_t>::max();
        /// Nanoseconds an item of each repetition, in the order in which they ran, by contender.
        std::map<std::string, std::vector<double>> times;
    };

    /// Each contender's time in one part of an operation's repetitions, the parts being counted from 0.
    std::vector<double> times(const Operation& operation, std::size_t part, std::size_t parts) const;

    std::vector<std::string> mContenders;
    std::size_t mItemsPerIteration;
    Remarks mRemarks;
    std::map<std::string, Operation> mOperations;
};
