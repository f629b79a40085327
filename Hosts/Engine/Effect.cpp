#include "Hosts/Engine/Effect.h"

#include <cassert>
#include <cstring>
#include <utility>

namespace Ombrique::Hosts {

namespace {

/// The later command of two: its result stands, and the findings of both.
void follow(CommandResult& result, CommandResult later) {
    later.findings.insert(later.findings.begin(), std::make_move_iterator(result.findings.begin()),
                          std::make_move_iterator(result.findings.end()));
    result = std::move(later);
}

void compare(const PluginBundle& bundle, const char* key, std::uint32_t registered, std::uint32_t declared) {
    if (registered != declared)
        throw BundleError(bundle.registrationFile().string() + ": " + key + " is " + std::to_string(registered) +
                          ", but the plug-in declares " + std::to_string(declared));
}

void compareDeclaration(const PluginBundle& bundle, const PF_OutData& declared) {
    const Registration& registered = bundle.registration();
    compare(bundle, "Version", registered.version, declared.my_version);
    compare(bundle, "OutFlags", static_cast<std::uint32_t>(registered.outFlags),
            static_cast<std::uint32_t>(declared.out_flags));
    compare(bundle, "OutFlags2", static_cast<std::uint32_t>(registered.outFlags2),
            static_cast<std::uint32_t>(declared.out_flags2));
}

PF_LRect requestedRectOf(const FrameRequest& request) {
    if (request.requestedRect)
        return *request.requestedRect;
    const World* world = request.output ? request.output : request.input;
    return world ? PF_LRect{0, 0, world->width(), world->height()} : PF_LRect{};
}

bool isEmpty(const PF_LRect& rect) { return rect.left >= rect.right || rect.top >= rect.bottom; }

bool reachesOutOf(const PF_LRect& inner, const PF_LRect& outer) {
    return !isEmpty(inner) && (inner.left < outer.left || inner.top < outer.top || inner.right > outer.right ||
                               inner.bottom > outer.bottom);
}

CommandResult preRender(HostCall& call, PF_EntryPoint entryPoint, PF_PreRenderOutput& output) {
    constexpr std::int32_t kAllChannels = 0xF;
    const PF_PreRenderInput input{{requestedRectOf(call.request()), 0, kAllChannels, 0}};
    PF_PreRenderExtra extra{&input, &output, HostCall::preRenderCallbacks()};
    return call.send(entryPoint, PF_Cmd_SMART_PRE_RENDER, &extra);
}

void addDamage(std::vector<std::string>& findings, const char* which, const World* world) {
    if (!world)
        return;
    for (const std::string& damage : world->damage())
        findings.push_back(std::string(which) + ": " + damage);
}

CommandResult smartRender(HostCall& call, PF_EntryPoint entryPoint) {
    const World* const input = call.request().input;
    const World* const output = call.request().output;
    const bool verifies = call.request().verifyInput && input && input != output;
    const std::uint64_t before = verifies ? input->checksum() : 0;

    PF_SmartRenderExtra extra{HostCall::smartRenderCallbacks()};
    CommandResult result = call.send(entryPoint, PF_Cmd_SMART_RENDER, &extra);

    addDamage(result.findings, "input world", input);
    if (output != input)
        addDamage(result.findings, "output world", output);
    if (verifies && input->checksum() != before)
        result.findings.emplace_back("input world: its pixels changed");
    return result;
}

} // namespace

Effect::Effect(const PluginBundle& bundle, ScriptEngine scriptEngine)
    : mBundle(bundle), mEnvironment{.parameters = {}, .scriptEngine = std::move(scriptEngine)} {}

Effect::~Effect() {
    if (!mIsSetUp)
        return;
    try {
        setDown();
    } catch (...) {
        // Out of memory for a result that nobody reads.
    }
}

CommandResult Effect::setUp(FaultPlan* faults) {
    assert(!mIsSetUp && "the effect is set up already");
    HostCall call({.faults = faults}, mEnvironment);
    CommandResult result = call.send(mBundle.entryPoint(), PF_Cmd_GLOBAL_SETUP);
    if (result.error)
        return result;
    mIsSetUp = true;
    try {
        compareDeclaration(mBundle, *call.outData());
    } catch (const BundleError&) {
        setDown();
        throw;
    }
    follow(result, declareParameters(call));
    if (result.error) {
        std::vector<std::string> findings = setDown(faults).findings;
        result.findings.insert(result.findings.end(), findings.begin(), findings.end());
    }
    return result;
}

CommandResult Effect::declareParameters(HostCall& call) {
    CommandResult result = call.send(mBundle.entryPoint(), PF_Cmd_PARAMS_SETUP);
    const std::size_t added = call.addedParameters().size();
    // The layer is a parameter, too, which isn't added.
    if (!result.error && call.outData()->num_params != static_cast<std::int32_t>(added) + 1)
        result.findings.push_back("num_params is " + std::to_string(call.outData()->num_params) + ", but " +
                                  std::to_string(added) + " were added to the layer");
    mEnvironment.parameters = std::move(call.addedParameters());
    mDeclaration = *call.outData();
    std::memset(mDeclaration.return_msg, 0, sizeof mDeclaration.return_msg);
    return result;
}

CommandResult Effect::setDown(FaultPlan* faults) {
    mIsSetUp = false;
    return send(PF_Cmd_GLOBAL_SETDOWN, faults);
}

CommandResult Effect::about(FaultPlan* faults) const { return send(PF_Cmd_ABOUT, faults); }

CommandResult Effect::send(PF_Cmd command, FaultPlan* faults) const {
    HostCall call({.faults = faults}, mEnvironment);
    *call.outData() = mDeclaration;
    return call.send(mBundle.entryPoint(), command);
}

FrameResult Effect::render(const FrameRequest& request) const {
    HostCall call(request, mEnvironment);
    *call.outData() = mDeclaration;
    PF_PreRenderOutput output{};
    FrameResult frame{preRender(call, mBundle.entryPoint(), output), output.result_rect, output.max_result_rect};
    if (frame.error)
        return frame;
    if (reachesOutOf(output.result_rect, output.max_result_rect))
        frame.findings.emplace_back("PF_Cmd_SMART_PRE_RENDER: the result reaches out of the greatest result");
    follow(frame, smartRender(call, mBundle.entryPoint()));
    return frame;
}

} // namespace Ombrique::Hosts
