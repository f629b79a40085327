#include "Hosts/Engine/FaultPlan.h"

#include <algorithm>

namespace Ombrique::Hosts {

namespace {

/// Whether the call of the log is of `name`: the same, or `name` and a detail.
bool isOf(std::string_view call, std::string_view name) {
    return call.starts_with(name) && (call.size() == name.size() || call[name.size()] == ' ');
}

} // namespace

FaultPlan::FaultPlan(std::initializer_list<Fault> faults) {
    for (const Fault& fault : faults)
        mFaults.push_back({fault});
}

int FaultPlan::count(std::string_view name) const {
    return static_cast<int>(
        std::count_if(mCalls.begin(), mCalls.end(), [name](const std::string& call) { return isOf(call, name); }));
}

const Fault* FaultPlan::arrive(std::string_view name, std::string_view detail, bool canFail) {
    std::string& call = mCalls.emplace_back(name);
    if (!detail.empty())
        call.append(" ").append(detail);
    const Fault* striking = nullptr;
    for (Planned& planned : mFaults) {
        if (!planned.fault.call.empty() && !isOf(call, planned.fault.call))
            continue;
        ++planned.seen;
        if (canFail && !striking && (planned.fault.nth == 0 || planned.fault.nth == planned.seen))
            striking = &planned.fault;
    }
    mFired += striking != nullptr;
    return striking;
}

} // namespace Ombrique::Hosts
