#include "Hosts/Engine/HostCall.h"

#include "Hosts/Engine/HostTables.h"

#include <cassert>
#include <cstring>
#include <utility>

namespace Ombrique::Hosts {

namespace {

thread_local HostCall* currentCall = nullptr;

/// Makes a session current on this thread for the length of a scope.
class CurrentScope {
public:
    explicit CurrentScope(HostCall* call) : mOuter(std::exchange(currentCall, call)) {}
    ~CurrentScope() { currentCall = mOuter; }
    CurrentScope(const CurrentScope&) = delete;
    CurrentScope& operator=(const CurrentScope&) = delete;

private:
    HostCall* mOuter;
};

const char* errorName(PF_Err error) {
    switch (error) {
    case PF_Err_OUT_OF_MEMORY:
        return " (PF_Err_OUT_OF_MEMORY)";
    case PF_Err_INTERNAL_STRUCT_DAMAGED:
        return " (PF_Err_INTERNAL_STRUCT_DAMAGED)";
    case PF_Err_UNRECOGNIZED_PARAM_TYPE:
        return " (PF_Err_UNRECOGNIZED_PARAM_TYPE)";
    case PF_Err_BAD_CALLBACK_PARAM:
        return " (PF_Err_BAD_CALLBACK_PARAM)";
    default:
        return "";
    }
}

} // namespace

std::string commandName(PF_Cmd command) {
    switch (command) {
    case PF_Cmd_ABOUT:
        return "PF_Cmd_ABOUT";
    case PF_Cmd_GLOBAL_SETUP:
        return "PF_Cmd_GLOBAL_SETUP";
    case PF_Cmd_GLOBAL_SETDOWN:
        return "PF_Cmd_GLOBAL_SETDOWN";
    case PF_Cmd_PARAMS_SETUP:
        return "PF_Cmd_PARAMS_SETUP";
    case PF_Cmd_SMART_PRE_RENDER:
        return "PF_Cmd_SMART_PRE_RENDER";
    case PF_Cmd_SMART_RENDER:
        return "PF_Cmd_SMART_RENDER";
    default:
        return "command " + std::to_string(command);
    }
}

std::string CommandResult::describe() const {
    std::string result = commandName(command) + " returned " + std::to_string(error) + errorName(error);
    if (!message.empty())
        result += ": " + message;
    for (const std::string& finding : findings)
        result += "; " + finding;
    for (char& character : result)
        if (character == '\r' || character == '\n')
            character = ' ';
    return result;
}

HostCall::HostCall(FrameRequest request, HostEnvironment environment)
    : mRequest(std::move(request)), mEnvironment(std::move(environment)), mOuter(std::exchange(currentCall, this)) {
    prepareInData();
}

HostCall::~HostCall() {
    assert(currentCall == this && "a session ends on the thread that it began on, the inner one first");
    currentCall = mOuter;
}

HostCall* HostCall::current() { return currentCall; }

const PF_PreRenderCallbacks* HostCall::preRenderCallbacks() { return &kPreRenderCallbacks; }

const PF_SmartRenderCallbacks* HostCall::smartRenderCallbacks() { return &kSmartRenderCallbacks; }

void HostCall::prepareInData() {
    mUtils = {kAnsiSuite, getPixelData8, getPixelData16};
    mInData = {};
    mInData.inter = kInteractCallbacks;
    mInData.utils = &mUtils;
    mInData.effect_ref = &mProgress;
    mInData.current_time = mRequest.time.time;
    mInData.time_step = mRequest.time.step;
    mInData.time_scale = mRequest.time.scale;
    mInData.pica_basicP = &kBasicSuite;
}

CommandResult HostCall::send(PF_EntryPoint entryPoint, PF_Cmd command, void* extra) {
    const CurrentScope scope(this);
    prepareInData();
    std::memset(mOutData.return_msg, 0, sizeof mOutData.return_msg);
    if (command == PF_Cmd_SMART_PRE_RENDER)
        mLayerCheckouts.clear();

    CommandResult result{.command = command};
    try {
        result.error = entryPoint(command, &mInData, &mOutData, nullptr, nullptr, extra);
    } catch (...) {
        result.error = PF_Err_INTERNAL_STRUCT_DAMAGED;
        mLedger.note("an exception left the entry point");
    }
    const std::size_t length = strnlen(mOutData.return_msg, sizeof mOutData.return_msg);
    if (length == sizeof mOutData.return_msg)
        mLedger.note("return_msg without an end");
    result.message.assign(mOutData.return_msg, length);
    for (const std::string& finding : mLedger.findings())
        result.findings.push_back(commandName(command) + ": " + finding);
    mLedger.clear();
    return result;
}

const Fault* HostCall::strikingFault(std::string_view name, std::string_view detail, bool canFail) const {
    return mRequest.faults ? mRequest.faults->arrive(name, detail, canFail) : nullptr;
}

bool HostCall::owns(PF_ProgPtr effectRef) {
    if (effectRef == &mProgress)
        return true;
    mLedger.note("a callback got an effect_ref that isn't this command's");
    return false;
}

const World* HostCall::worldOf(const PF_LayerDef* layer) const {
    for (const World* world : {mRequest.input, mRequest.output})
        if (world && layer && world->layer()->data == layer->data)
            return world;
    return nullptr;
}

} // namespace Ombrique::Hosts
