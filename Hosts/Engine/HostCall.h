#pragma once

#include "Hosts/Engine/FrameRequest.h"
#include "Hosts/Engine/Ledger.h"
#include "Platform/HostInterface/HostInterface.h"

#include <string>
#include <string_view>
#include <vector>

/// The host's side of `effect_ref`: its address is all that matters.
struct PF_ProgressInfo {};

namespace Ombrique::Hosts {

/// The outcome of a command.
struct CommandResult {
    PF_Cmd command = 0;
    /// What the plug-in returned.
    PF_Err error = PF_Err_NONE;
    /// What the plug-in wrote to return_msg.
    std::string message{};
    /// What a careful host objects to, one line each, whatever the error: see Ledger and World::damage. Empty when all
    /// is well.
    std::vector<std::string> findings{};

    /// No error and nothing to object to.
    bool clean() const { return error == PF_Err_NONE && findings.empty(); }
    /// The command, the error, the message and the findings in one line for people, as "PF_Cmd_SMART_RENDER returned
    /// 516 (PF_Err_BAD_CALLBACK_PARAM)".
    std::string describe() const;
};

/// A command's name in the interface, or its number.
std::string commandName(PF_Cmd command);

/// A session: calls from the host into a plug-in, with all that the host serves meanwhile: in_data and its callbacks,
/// the suites, and the ledger of what is taken and given back. A frame is one session of two commands.
///
/// The suites' functions don't say on whose behalf they are called, so a session is found by thread: it is current on
/// the thread that made it from construction to destruction, and on the thread of send() meanwhile. Sessions nest.
/// Host functions that are called on a thread without a current session fail with PF_Err_BAD_CALLBACK_PARAM or null.
/// So code that uses the host's services can be run without any bundle:
///
///     HostCall call({.input = &world});
///     DownloadTexture(..., call.inData(), ...);
///     EXPECT_TRUE(call.findings().empty());
class HostCall {
public:
    /// `request` and `environment` are copied; the worlds and the plan in them must outlive this.
    explicit HostCall(FrameRequest request = {}, HostEnvironment environment = {});
    /// On the thread of the constructor. Frees the memory that the plug-in left behind.
    ~HostCall();
    HostCall(const HostCall&) = delete;
    HostCall& operator=(const HostCall&) = delete;

    /// The session that is current on the calling thread, or null.
    static HostCall* current();

    /// What the plug-in's code is called with. send() sets in_data anew for each command.
    PF_InData* inData() { return &mInData; }
    PF_OutData* outData() { return &mOutData; }
    static const PF_PreRenderCallbacks* preRenderCallbacks();
    static const PF_SmartRenderCallbacks* smartRenderCallbacks();

    /// Sends one command. What is out of balance afterwards stands in the result, and the ledger starts anew. Keeps the
    /// PF_OutData of the command before, without its message. An exception that leaves the plug-in is a finding and the
    /// error 512.
    CommandResult send(PF_EntryPoint entryPoint, PF_Cmd command, void* extra = nullptr);

    /// What is out of balance, or was done wrongly, since construction or the last command.
    std::vector<std::string> findings() const { return mLedger.findings(); }

    /// For the callbacks and suites, on the thread of this session.
    const FrameRequest& request() const { return mRequest; }
    const HostEnvironment& environment() const { return mEnvironment; }
    Ledger& ledger() { return mLedger; }
    /// Logs a call of the host by the plan of the request (see FaultPlan), and returns the fault that strikes it, or
    /// null.
    const Fault* strikingFault(std::string_view name, std::string_view detail, bool canFail) const;
    /// Whether `effectRef` is the one that this session handed out; noted where it isn't.
    bool owns(PF_ProgPtr effectRef);
    /// What add_param declared since construction.
    std::vector<PF_ParamDef>& addedParameters() { return mAddedParameters; }
    /// The checkout ids of checkout_layer since construction, or since the last PF_Cmd_SMART_PRE_RENDER was sent.
    std::vector<std::int32_t>& layerCheckouts() { return mLayerCheckouts; }
    /// The world of this session that `layer` is of, or null.
    const World* worldOf(const PF_LayerDef* layer) const;

private:
    void prepareInData();

    FrameRequest mRequest;
    HostEnvironment mEnvironment;
    Ledger mLedger;
    std::vector<PF_ParamDef> mAddedParameters;
    std::vector<std::int32_t> mLayerCheckouts;
    PF_ProgressInfo mProgress{};
    PF_UtilCallbacks mUtils{};
    PF_InData mInData{};
    PF_OutData mOutData{};
    HostCall* mOuter;
};

} // namespace Ombrique::Hosts
