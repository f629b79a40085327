#include "Tests/Support/EffectTest.h"

#include "Tests/Support/FailingAllocation.h"
#include "Tests/Support/OpenGLObjects.h"
#include "Tests/Support/Sweep.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <initializer_list>
#include <limits>
#include <string_view>
#include <utility>

namespace Ombrique::Tests {

using namespace Hosts;

namespace {

/// More names than a test uses.
constexpr unsigned kMostNames = 1000;

/// What a command returns of which this call failed.
PF_Err dueResult(std::string_view call, FaultKind kind) {
    const auto is = [call](std::initializer_list<std::string_view> names) {
        return std::ranges::any_of(names, [call](std::string_view name) { return call.starts_with(name); });
    };
    if (is({"ReleaseSuite", "host_unlock_handle", "host_dispose_handle", "strcpy"}))
        return PF_Err_NONE;
    if (is({"checkin_param", "add_param"}))
        return kind == FaultKind::GiveNothing ? PF_Err_NONE : kInjectedError;
    if (kind == FaultKind::GiveNothing) {
        // No world is nothing to do, no slider counts as 0, and suites that are only held aren't missed. A layer that
        // wasn't checked out has no pixels, says the host.
        const bool missed = is({"get_pixel_data8", "host_", "AcquireSuite PF Handle Suite", "checkout_layer 0"});
        return missed ? PF_Err_BAD_CALLBACK_PARAM : PF_Err_NONE;
    }
    if (kind == FaultKind::Misreport && is({"get_pixel_data8"}))
        return PF_Err_NONE; // what is given counts, not the code
    return is({"checkout_"}) ? kInjectedError : PF_Err_BAD_CALLBACK_PARAM;
}

/// A picture, for a negative side of as many pixels.
World makeWorld(Size size, WorldLayout layout) {
    return makePicture(std::abs(size.width), std::abs(size.height), 12, false, layout);
}

/// Tells the plug-in this size, and of a world without pixels no memory. Returns how many worlds have been changed.
std::size_t describe(World& world, Size size) {
    PF_LayerDef& layer = *world.layer();
    layer.width = size.width;
    layer.height = size.height;
    if (size.width == 0 || size.height == 0)
        layer.data = nullptr;
    return world.damage().size();
}

} // namespace

EffectTest::EffectTest(EGLenum api) : host(api) {
    const CommandResult result = effect.setUp();
    EXPECT_TRUE(result.clean()) << result.describe();
    EXPECT_TRUE(host.isUntouched());
    letGoOfContext();
    EXPECT_EQ(plainFrame(), "");
    mObjects = countOpenGLObjects(kMostNames);
    EXPECT_GT(mObjects["Renderbuffer"], 0);
}

void EffectTest::check(const std::function<void()>& action) {
    host.makeCurrent();
    action();
    EXPECT_TRUE(host.isUntouched());
    EXPECT_TRUE(effect.isSetUp() || effect.setUp().clean());
    letGoOfContext(); // so that the effect's own stays current after a frame, and its objects can be counted
    EXPECT_EQ(plainFrame(), "");
    EXPECT_EQ(countOpenGLObjects(kMostNames), mObjects);
}

void EffectTest::render(const Case& testCase) {
    SCOPED_TRACE(testCase.name);
    const World before = testCase.hasInput ? makeWorld(testCase.size, {}) : World(0, 0);
    World input = makeWorld(testCase.size, testCase.input);
    World separate = makeWorld(testCase.outputSize.value_or(testCase.size), testCase.output);
    World untouched = makeWorld(testCase.outputSize.value_or(testCase.size), {});
    World& output = testCase.inPlace ? input : separate;
    std::size_t described = describe(input, testCase.size);
    if (!testCase.inPlace)
        described += describe(separate, testCase.outputSize.value_or(testCase.size));
    check([&] {
        const FrameResult result = effect.render({.input = testCase.hasInput ? &input : nullptr,
                                                  .output = testCase.hasOutput ? &output : nullptr,
                                                  .values = testCase.correction.sliders()});
        EXPECT_EQ(result.error, testCase.error);
        EXPECT_EQ(result.findings.size(), described) << result.describe(); // that it isn't as it was made
    });
    const bool isDrawn = testCase.hasOutput && testCase.error == PF_Err_NONE;
    EXPECT_EQ(isDrawn ? compareWithOracle(before, output, testCase.correction) : comparePixels(untouched, separate),
              "");
}

void EffectTest::sweep(const std::string& name, int every, const std::function<CommandResult(FaultPlan&)>& action) {
    FaultPlan log;
    check([&] { EXPECT_TRUE(action(log).clean()); });
    for (const auto& [kind, how] : {std::pair{FaultKind::Refuse, "refused"},
                                    {FaultKind::GiveNothing, "nothing given"},
                                    {FaultKind::Misreport, "misreported"}}) {
        Tests::sweep(name + ", host calls, " + how, every, [&, kind = kind](int n) {
            if (n > static_cast<int>(log.calls().size()))
                return false;
            const std::string& call = log.calls()[static_cast<std::size_t>(n) - 1];
            SCOPED_TRACE(call);
            // A slider that the host says it has taken, and doesn't know, is its own fault.
            if (kind == FaultKind::GiveNothing && call == "add_param")
                return true;
            FaultPlan plan{{.nth = n, .kind = kind}};
            check([&] {
                const CommandResult result = action(plan);
                EXPECT_EQ(result.error, plan.fired() > 0 ? dueResult(call, kind) : PF_Err_NONE);
                EXPECT_TRUE(result.findings.empty()) << result.describe();
            });
            return true;
        });
    }
    Tests::sweep(name + ", allocations", every, [&](int n) {
        bool fired = false;
        check([&] {
            FaultPlan none;
            const FailingAllocation failing(n);
            const CommandResult result = action(none);
            fired = failing.fired();
            EXPECT_EQ(result.error, fired ? PF_Err_OUT_OF_MEMORY : PF_Err_NONE);
            EXPECT_TRUE(result.findings.empty()) << result.describe();
        });
        return fired;
    });
}

std::string EffectTest::plainFrame(const Correction& correction, unsigned seed, Size size) const {
    World input = makePicture(size.width, size.height, seed);
    World output(size.width, size.height);
    const FrameResult result = effect.render({.input = &input, .output = &output, .values = correction.sliders()});
    return result.clean() ? compareWithOracle(input, output, correction) : result.describe();
}

int EffectTest::mostPixels() const {
    host.makeCurrent();
    int most = std::numeric_limits<int>::max();
    // The largest texture, renderbuffer and viewport.
    for (const unsigned name : {0x0D33u, 0x84E8u, 0x0D3Au}) {
        std::array<int, 2> value{};
        openGLFunction<void(unsigned, int*)>("glGetIntegerv")(name, value.data());
        most = std::min(most, value[0]);
    }
    return most;
}

} // namespace Ombrique::Tests
