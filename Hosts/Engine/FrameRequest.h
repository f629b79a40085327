#pragma once

#include "Hosts/Engine/FaultPlan.h"
#include "Hosts/Engine/World.h"
#include "Platform/HostInterface/HostInterface.h"

#include <concepts>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// What a host passes to a plug-in's commands: the frame that it wants, and what it keeps for the effect between
/// commands. Plain values.
namespace Ombrique::Hosts {

/// A moment, as the interface counts: `time` over `scale` is in seconds, and `step` is the length of a frame.
struct FrameTime {
    std::int32_t time = 0;
    std::int32_t step = 1;
    std::uint32_t scale = 24;

    double seconds() const { return static_cast<double>(time) / scale; }
    /// The number of the frame, counted from time 0; `step` must not be 0.
    double frame() const { return static_cast<double>(time) / step; }
};

/// The value of a slider: a constant, or a function of the time that the plug-in asks for. The function is called on
/// the thread of the command, and on several where several render. Where it throws, the checkout fails.
class SliderValue {
public:
    SliderValue(double constant) : mAt([constant](const FrameTime&) { return constant; }) {}
    template <std::invocable<const FrameTime&> Function> SliderValue(Function function) : mAt(std::move(function)) {}

    double at(const FrameTime& time) const { return mAt(time); }

private:
    std::function<double(const FrameTime&)> mAt;
};

/// Slider values by parameter index, which starts at 1 for the first declared parameter. A parameter that isn't here
/// has its declared default. Values are handed out as they are, also beyond the declared range.
using ParameterValues = std::map<int, SliderValue>;

/// One frame that is asked for. Whoever asks owns the worlds and the plan, and keeps them until the frame is done.
struct FrameRequest {
    /// The layer's pixels. Null: the plug-in gets a null world.
    World* input = nullptr;
    /// What the plug-in writes to; may be the input. Null: the plug-in gets a null world.
    World* output = nullptr;
    ParameterValues values{};
    FrameTime time{};
    /// The rectangle that is requested of the output. By default all of the output world, or of the input without one.
    std::optional<PF_LRect> requestedRect{};
    /// The rectangle that the input layer covers. By default all of the input world.
    std::optional<PF_LRect> layerRect{};
    /// Which calls of the host fail, and their log; null for no faults and no log.
    FaultPlan* faults = nullptr;
    /// Find out whether the input world was written to. It costs two passes over the input's pixels.
    bool verifyInput = true;
};

/// The outcome of a script: its result, or where `error` isn't empty, the reason why there is none.
struct ScriptResult {
    std::string text{};
    std::string error{};
};

/// Runs a script for AEGP_ExecuteScript, on the thread of the command. An exception becomes an error of its text.
using ScriptEngine = std::function<ScriptResult(const std::string& script)>;

/// What a host keeps for an effect between commands.
struct HostEnvironment {
    /// The parameters as declared, the first being index 1.
    std::vector<PF_ParamDef> parameters{};
    /// Empty where the host has none: then each script ends in an error that says so.
    ScriptEngine scriptEngine{};
};

} // namespace Ombrique::Hosts
