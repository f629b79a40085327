#pragma once

#include "Platform/HostInterface/Basics.h"

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace Ombrique::Hosts {

/// How a call of the host fails.
enum class FaultKind {
    /// Nothing is done; the result is the fault's error, or null where the function returns a pointer, and pointers
    /// that are handed out by address are null; what else it would fill stays as it was. (sprintf writes nothing and
    /// returns -1; strcpy copies nothing.)
    Refuse,
    /// Nothing is done, and success is reported: AcquireSuite with a null suite, checkout_output with a null world.
    /// The same as Refuse where a function returns no error code.
    GiveNothing,
    /// All is done and handed out, and the error is reported nevertheless. What was handed out may be given back, and
    /// needn't be. The same as Refuse where a function returns no error code.
    Misreport,
};

/// The error that a fault reports where its plan names no other; the engine itself never uses it.
constexpr PF_Err kInjectedError = 599;

/// One call that is made to fail.
struct Fault {
    /// Which: a function's name ("checkout_param"), or that with its detail ("checkout_param 2"); empty means any.
    std::string call{};
    /// Which such call fails, counted from 1; 0 means each.
    int nth = 1;
    FaultKind kind = FaultKind::Refuse;
    PF_Err error = kInjectedError;
};

/// Which calls of the host fail, and a log of all that were made. Every callback and every suite function passes here
/// by its own name in the interface, some with a detail: "AcquireSuite PF Handle Suite", "ReleaseSuite PF Handle
/// Suite", "checkout_param 1" (the index), "checkout_layer 0" and "checkout_layer_pixels 0" (the checkout id).
///
/// Calls that give something back (ReleaseSuite, checkin_param, host_unlock_handle, host_dispose_handle,
/// AEGP_UnlockMemHandle, AEGP_FreeMemHandle) always do so: a fault changes their result only, and can't touch those
/// without one.
///
/// A plan keeps counting over all commands that it is given to, so that one plan covers a whole frame. One thread at a
/// time. To try each fault of a frame: render once with an empty plan, then once for each n of calls().size() with
/// `FaultPlan plan{{.nth = n}}`.
class FaultPlan {
public:
    /// Logs, and fails nothing.
    FaultPlan() = default;
    FaultPlan(std::initializer_list<Fault> faults);

    /// All calls so far, in order, each as its name and, after a blank, its detail.
    const std::vector<std::string>& calls() const { return mCalls; }
    /// How many of them were of `name`, with or without a detail.
    int count(std::string_view name) const;
    /// How many calls failed by this plan.
    int fired() const { return mFired; }

    /// Logs a call, and returns the fault that strikes it, or null. For the engine's own use. Where `canFail` is false,
    /// the call is logged and counted, and no fault strikes.
    const Fault* arrive(std::string_view name, std::string_view detail, bool canFail);

private:
    struct Planned {
        Fault fault;
        int seen = 0;
    };

    std::vector<Planned> mFaults;
    std::vector<std::string> mCalls;
    int mFired = 0;
};

} // namespace Ombrique::Hosts
