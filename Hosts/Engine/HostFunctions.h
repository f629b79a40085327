#pragma once

#include "Hosts/Engine/HostCall.h"

#include <new>
#include <string_view>

/// The C functions that the host serves, as the tables of the interface, and the one way from each of them to the
/// stretch that is current on its thread. Private to the engine.
namespace Ombrique::Hosts {

extern const PF_InteractCallbacks kInteractCallbacks;
extern const PF_PreRenderCallbacks kPreRenderCallbacks;
extern const PF_SmartRenderCallbacks kSmartRenderCallbacks;

extern const PF_ANSICallbacksSuite1 kAnsiSuite;
extern const PF_iterateFloatSuite1 kIterateFloatSuite;
extern const PF_HandleSuite1 kHandleSuite;
extern const AEGP_MemorySuite1 kMemorySuite;
extern const AEGP_UtilitySuite5 kUtilitySuite;

/// PF_GET_PIXEL_DATA8 and PF_GET_PIXEL_DATA16.
PF_Err getPixelData8(PF_EffectWorld* world, void* pixel, PF_Pixel8** data);
PF_Err getPixelData16(PF_EffectWorld* world, void* pixel, PF_Pixel16** data);

/// The desk for suites. The interface has it changeable, and nobody changes it.
extern SPBasicSuite kBasicSuite;

/// The fault that strikes this call by the plan of the request, or null.
const Fault* strikingFault(const HostCall& call, std::string_view name, std::string_view detail, bool canFail);

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
        const Fault* fault = strikingFault(*call, name, detail, true);
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
        const Fault* fault = strikingFault(*call, name, detail, true);
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
            strikingFault(*call, name, {}, false);
            body(*call);
            return PF_Err{PF_Err_NONE};
        });
}

} // namespace Ombrique::Hosts
