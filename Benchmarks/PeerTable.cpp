#include "Benchmarks/PeerTable.h"

#include <algorithm>
#include <iomanip>

namespace {

double median(std::vector<double> numbers) {
    if (numbers.empty())
        return std::numeric_limits<double>::quiet_NaN();
    const auto middle = numbers.begin() + static_cast<std::ptrdiff_t>(numbers.size() / 2);
    std::nth_element(numbers.begin(), middle, numbers.end());
    return *middle;
}

} // namespace

bool PeerTable::ReportContext(const Context& context) {
    PrintBasicContext(&GetErrorStream(), context);
    return true;
}

void PeerTable::ReportRuns(const std::vector<Run>& runs) {
    for (const Run& run : runs) {
        if (run.run_type != Run::RT_Iteration)
            continue;
        const std::string& name = run.run_name.function_name;
        const auto slash = name.find('/');
        Operation& operation = mOperations[name.substr(0, slash)];
        operation.firstFamily = std::min(operation.firstFamily, run.family_index);
        const double seconds = run.cpu_accumulated_time / static_cast<double>(run.iterations);
        operation.times[name.substr(slash + 1)].push_back(seconds * 1e9 / static_cast<double>(mItemsPerIteration));
    }
}

void PeerTable::Finalize() {
    std::ostream& out = GetOutputStream();
    out << std::left << std::setw(28) << "median ns an operation" << std::right;
    for (const std::string& contender : mContenders)
        out << std::setw(10) << contender;
    out << std::setw(16) << "over the faster" << '\n' << std::fixed;

    std::vector<std::pair<std::string, Operation>> operations(mOperations.begin(), mOperations.end());
    std::sort(operations.begin(), operations.end(),
              [](const auto& a, const auto& b) { return a.second.firstFamily < b.second.firstFamily; });
    for (auto& [name, operation] : operations) {
        out << std::left << std::setw(28) << name << std::right << std::setprecision(2);
        std::vector<double> medians;
        for (const std::string& contender : mContenders) {
            medians.push_back(median(operation.times[contender]));
            out << std::setw(10) << medians.back();
        }
        out << std::setw(16) << medians.front() / *std::min_element(medians.begin() + 1, medians.end()) << '\n';
    }
}
