#pragma once

#include "Hosts/Bundle/PluginBundle.h"
#include "Hosts/Engine/HostCall.h"

#include <vector>

namespace Ombrique::Hosts {

/// The outcome of a frame: the result of its last command, with the findings of both.
struct FrameResult : CommandResult {
    /// The plug-in's answer to the pre-render.
    PF_LRect resultRect{};
    PF_LRect maxResultRect{};
};

/// An effect: a plug-in with its declarations and its parameters, driven by the host's commands. A PF_Err of the
/// plug-in comes back as a value.
///
/// about() and render() may run on several threads at once, each frame with worlds of its own; setUp() and setDown()
/// run alone. The engine makes no OpenGL calls.
///
///     PluginBundle bundle("OmbriqueContrast.plugin");
///     Effect effect(bundle);
///     effect.setUp();
///     FrameResult result = effect.render({.input = &in, .output = &out, .values = {{1, 1.4}, {2, 5.0}}});
class Effect {
public:
    /// Nothing is sent. `bundle` must outlive the effect.
    explicit Effect(const PluginBundle& bundle, ScriptEngine scriptEngine = {});
    /// Sets the effect down where it is set up.
    ~Effect();
    Effect(const Effect&) = delete;
    Effect& operator=(const Effect&) = delete;

    /// Sends PF_Cmd_GLOBAL_SETUP and PF_Cmd_PARAMS_SETUP. Where one fails, that is the result, and the effect is not
    /// set up (after a failed second command, it is set down). The effect must not be set up; it may be after
    /// setDown().
    /// @throw BundleError where version or flags are others than the bundle registers; the effect is set down again.
    CommandResult setUp(FaultPlan* faults = nullptr);
    /// Sends PF_Cmd_GLOBAL_SETDOWN, whether or not the effect is set up. It isn't afterwards, whatever the result.
    CommandResult setDown(FaultPlan* faults = nullptr);
    bool isSetUp() const { return mIsSetUp; }

    /// The parameters as the last set-up declared them, the first being index 1.
    const std::vector<PF_ParamDef>& parameters() const { return mEnvironment.parameters; }
    /// What the last set-up declared; its message is empty.
    const PF_OutData& declaration() const { return mDeclaration; }

    /// Sends PF_Cmd_ABOUT; the text is the result's message.
    CommandResult about(FaultPlan* faults = nullptr) const;

    /// Renders one frame: PF_Cmd_SMART_PRE_RENDER, and where that succeeds, PF_Cmd_SMART_RENDER. The layer gives what
    /// the request and its own rectangle have in common, and the worlds are handed out as they are, whatever the
    /// rectangles. Findings are those of the ledger, damage to either world, a changed input (see
    /// FrameRequest::verifyInput; not where both worlds are one), and a result rectangle that reaches out of the
    /// greatest one. A set-down effect is sent the commands all the same.
    FrameResult render(const FrameRequest& request) const;

    /// For commands beside these: `HostCall call(request, effect.environment()); call.send(bundle.entryPoint(), ...)`.
    const HostEnvironment& environment() const { return mEnvironment; }

private:
    CommandResult declareParameters(HostCall& call);
    CommandResult send(PF_Cmd command, FaultPlan* faults) const;

    const PluginBundle& mBundle;
    HostEnvironment mEnvironment;
    PF_OutData mDeclaration{};
    bool mIsSetUp = false;
};

} // namespace Ombrique::Hosts
