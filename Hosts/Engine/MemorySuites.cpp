#include "Hosts/Engine/HostTables.h"
#include "Hosts/Engine/Serve.h"

#include <cstring>
#include <exception>
#include <string>

// The suites that hand out memory: handles, memory handles, and the scripts whose results come in such.
namespace Ombrique::Hosts {

namespace {

PF_Handle newHandle(std::uint64_t size) {
    return serveValue("host_new_handle", PF_Handle{},
                      [&](HostCall& call) { return call.ledger().handles().create(size); });
}

void* lockHandle(PF_Handle handle) {
    return serveValue("host_lock_handle", static_cast<void*>(nullptr),
                      [&](HostCall& call) { return call.ledger().handles().lock(handle, call.ledger().notes()); });
}

void unlockHandle(PF_Handle handle) {
    serveVoid("host_unlock_handle",
              [&](HostCall& call) { call.ledger().handles().unlock(handle, call.ledger().notes()); });
}

void disposeHandle(PF_Handle handle) {
    serveVoid("host_dispose_handle",
              [&](HostCall& call) { call.ledger().handles().dispose(handle, call.ledger().notes()); });
}

PF_Err orBadParameter(bool good) { return good ? PF_Err_NONE : PF_Err_BAD_CALLBACK_PARAM; }

PF_Err lockMemHandle(AEGP_MemHandle handle, void** memory) {
    if (memory)
        *memory = nullptr;
    return serve("AEGP_LockMemHandle", {}, [&](HostCall& call, bool) -> PF_Err {
        if (!handle || !memory)
            return PF_Err_BAD_CALLBACK_PARAM;
        *memory = call.ledger().memoryHandles().lock(handle, call.ledger().notes());
        return orBadParameter(*memory != nullptr);
    });
}

PF_Err unlockMemHandle(AEGP_MemHandle handle) {
    return serveReturn("AEGP_UnlockMemHandle", {}, [&](HostCall& call) {
        return orBadParameter(handle && call.ledger().memoryHandles().unlock(handle, call.ledger().notes()));
    });
}

PF_Err freeMemHandle(AEGP_MemHandle handle) {
    return serveReturn("AEGP_FreeMemHandle", {}, [&](HostCall& call) {
        return orBadParameter(handle && call.ledger().memoryHandles().dispose(handle, call.ledger().notes()));
    });
}

ScriptResult runScript(const ScriptEngine& engine, const char* script) {
    if (!engine)
        return {.error = "this host has no script engine"};
    try {
        return engine(script);
    } catch (const std::exception& exception) {
        return {.error = exception.what()};
    }
}

/// A new memory handle that holds `text` and a zero, stored at `handle` where the plug-in wants it.
bool handOut(HostCall& call, const std::string& text, AEGP_MemHandle* handle) {
    if (!handle)
        return true;
    char** const block = call.ledger().memoryHandles().create(text.size() + 1);
    if (!block)
        return false;
    std::memcpy(*block, text.c_str(), text.size() + 1);
    *handle = reinterpret_cast<AEGP_MemHandle>(block);
    return true;
}

PF_Err executeScript(AEGP_PluginID, const char* script, std::uint8_t, AEGP_MemHandle* result, AEGP_MemHandle* error) {
    for (AEGP_MemHandle* handle : {result, error})
        if (handle)
            *handle = nullptr;
    return serve("AEGP_ExecuteScript", {}, [&](HostCall& call, bool) -> PF_Err {
        if (!script)
            return PF_Err_BAD_CALLBACK_PARAM;
        const ScriptResult outcome = runScript(call.environment().scriptEngine, script);
        const bool good = handOut(call, outcome.text, result) && handOut(call, outcome.error, error);
        return good ? PF_Err_NONE : PF_Err_OUT_OF_MEMORY;
    });
}

} // namespace

const PF_HandleSuite1 kHandleSuite = {newHandle, lockHandle, unlockHandle, disposeHandle};
const AEGP_MemorySuite1 kMemorySuite = {lockMemHandle, unlockMemHandle, freeMemHandle};
const AEGP_UtilitySuite5 kUtilitySuite = {executeScript};

} // namespace Ombrique::Hosts
