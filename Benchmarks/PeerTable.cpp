#include "Benchmarks/PeerTable.h"

#include <algorithm>
#include <iomanip>

namespace {

constexpr std::size_t kParts = 3;

double tenthPercentile(std::vector<double> numbers) {
    if (numbers.empty())
        return std::numeric_limits<double>::quiet_NaN();
    const auto tenth = numbers.begin() + static_cast<std::ptrdiff_t>(numbers.size() / 10);
    std::nth_element(numbers.begin(), tenth, numbers.end());
    return *tenth;
}

/// The first of the times over the least of the others.
double ratio(const std::vector<double>& times) {
    return times.front() / *std::min_element(times.begin() + 1, times.end());
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

std::vector<double> PeerTable::times(const Operation& operation, std::size_t part, std::size_t parts) const {
    std::vector<double> result;
    for (const std::string& contender : mContenders) {
        const auto found = operation.times.find(contender);
        const std::vector<double> all = found == operation.times.end() ? std::vector<double>() : found->second;
        const auto at = [&](std::size_t i) {
            return all.begin() + static_cast<std::ptrdiff_t>(i * all.size() / parts);
        };
        result.push_back(tenthPercentile({at(part), at(part + 1)}));
    }
    return result;
}

void PeerTable::Finalize() {
    std::ostream& out = GetOutputStream();
    out << std::left << std::setw(28) << "ns, tenth percentile" << std::right;
    for (const std::string& contender : mContenders)
        out << std::setw(10) << contender;
    out << "  over the faster\n" << std::fixed << std::setprecision(2);

    std::vector<std::pair<std::string, Operation>> operations(mOperations.begin(), mOperations.end());
    std::sort(operations.begin(), operations.end(),
              [](const auto& a, const auto& b) { return a.second.firstFamily < b.second.firstFamily; });
    for (const auto& [name, operation] : operations) {
        const std::vector<double> overall = times(operation, 0, 1);
        out << std::left << std::setw(28) << name << std::right;
        for (const double time : overall)
            out << std::setw(10) << time;
        std::vector<double> ratios;
        for (std::size_t part = 0; part < kParts; ++part)
            ratios.push_back(ratio(times(operation, part, kParts)));
        const auto [least, most] = std::minmax_element(ratios.begin(), ratios.end());
        out << std::setw(6) << ratio(overall) << " (" << *least << " to " << *most << ')';
        const auto remark = mRemarks.find(name);
        out << (remark == mRemarks.end() ? "" : "  " + remark->second) << '\n';
    }
}
