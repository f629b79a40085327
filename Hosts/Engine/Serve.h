#pragma once

#include "Hosts/Engine/HostCall.h"

#include <new>
#include <string_view>

/// How each function that the host serves finds the session of its thread, and how faults and exceptions become error
/// codes. Private to the engine.
namespace Ombrique::Hosts {

/// Runs `action`, and turns an exception into an error: no exception passes to the plug-in.
template <typename Action> PF_Err withoutExceptions(Action action) noexcept {
    try {
        return action();
    } catch (const std::bad_alloc&) {
        return PF_Err_OUT_OF_MEMORY;
    } catch (...) {
        return PF_Err_INTERNAL_STRUCT_DAMAGED;
    }
}

/// Serves a function that hands something out: `body(call, optional)`, where `optional` says that the plug-in will be
/// told of an error all the same. What is handed out by address must be null beforehand.
template <typename Body> PF_Err serve(const char* name, std::string_view detail, Body body) noexcept {
    HostCall* call = HostCall::current();
    if (!call)
        return PF_Err_BAD_CALLBACK_PARAM;
    return withoutExceptions([&] {
        const Fault* fault = call->strikingFault(name, detail, true);
        if (fault && fault->kind == FaultKind::Refuse)
            return fault->error;
        if (fault && fault->kind == FaultKind::GiveNothing)
            return PF_Err{PF_Err_NONE};
        const PF_Err error = body(*call, fault != nullptr);
        return fault ? fault->error : error;
    });
}

/// Serves a function that takes something back: a fault changes its result only.
template <typename Body> PF_Err serveReturn(const char* name, std::string_view detail, Body body) noexcept {
    HostCall* call = HostCall::current();
    if (!call)
        return PF_Err_BAD_CALLBACK_PARAM;
    return withoutExceptions([&] {
        const Fault* fault = call->strikingFault(name, detail, true);
        const PF_Err error = body(*call);
        return fault && fault->kind != FaultKind::GiveNothing ? fault->error : error;
    });
}

/// Serves a function whose result is a value: `body(call)`, or `refused` where it fails.
template <typename Value, typename Body> Value serveValue(const char* name, Value refused, Body body) noexcept {
    Value result = refused;
    serve(name, {}, [&](HostCall& call, bool failing) {
        if (!failing)
            result = body(call);
        return PF_Err{PF_Err_NONE};
    });
    return result;
}

/// Serves a function without a result, which can't fail.
template <typename Body> void serveVoid(const char* name, Body body) noexcept {
    if (HostCall* call = HostCall::current())
        withoutExceptions([&] {
            call->strikingFault(name, {}, false);
            body(*call);
            return PF_Err{PF_Err_NONE};
        });
}

} // namespace Ombrique::Hosts
