#include "Tests/Support/EffectHarness.h"

#include <iostream>
#include <set>

namespace Ombrique::Tests {

namespace {

using namespace Hosts;

constexpr FaultKind kKinds[] = {FaultKind::Refuse, FaultKind::GiveNothing, FaultKind::Misreport};

/// What a frame returns whose n-th call failed.
PF_Err expectedResult(const std::string& call, FaultKind kind) {
    const auto is = [&call](const char* name) { return call.rfind(name, 0) == 0; };
    if (is("ReleaseSuite") || is("host_unlock_handle") || is("host_dispose_handle"))
        return PF_Err_NONE;
    if (is("checkin_param"))
        return kind == FaultKind::GiveNothing ? PF_Err_NONE : kInjectedError;
    if (kind == FaultKind::GiveNothing) {
        // No world is nothing to do, no slider counts as 0, and suites that are only held aren't missed. A layer that
        // wasn't checked out has no pixels, says the host.
        const bool missed = is("get_pixel_data8") || is("host_") || is("AcquireSuite PF Handle Suite");
        return missed || is("checkout_layer 0") ? PF_Err_BAD_CALLBACK_PARAM : PF_Err_NONE;
    }
    if (kind == FaultKind::Misreport && is("get_pixel_data8"))
        return PF_Err_NONE; // what is given counts, not the code
    return is("checkout_") ? kInjectedError : PF_Err_BAD_CALLBACK_PARAM;
}

TEST(FaultSweep, EachCallOfAFrame) {
    const EffectHarness harness;
    World input = makePicture(7, 5, 99);
    const auto render = [&](FaultPlan& plan) {
        World output(7, 5);
        return harness.effect.render(
            {.input = &input, .output = &output, .values = EffectHarness::sliders(1.4, 5.0), .faults = &plan});
    };
    FaultPlan log;
    ASSERT_TRUE(render(log).clean());
    int tried = 0;
    for (const FaultKind kind : kKinds) {
        for (int n = 1; n <= static_cast<int>(log.calls().size()); ++n) {
            const std::string& call = log.calls()[static_cast<std::size_t>(n) - 1];
            SCOPED_TRACE(call + ", call " + std::to_string(n) + ", kind " + std::to_string(static_cast<int>(kind)));
            FaultPlan plan{{.nth = n, .kind = kind}};
            const FrameResult result = render(plan);
            tried += plan.fired();
            EXPECT_TRUE(result.findings.empty()) << result.describe();
            EXPECT_EQ(result.error, plan.fired() > 0 ? expectedResult(call, kind) : PF_Err_NONE);
            harness.expectRight(input, 1.4, 5.0);
        }
    }
    const std::set<std::string> names(log.calls().begin(), log.calls().end());
    std::cout << tried << " faults tried in the " << log.calls().size() << " calls (" << names.size()
              << " different) of a frame\n";
    EXPECT_GT(tried, 30);
}

TEST(FaultSweep, EachCallOfSetup) {
    EffectHarness harness;
    World picture = makePicture(6, 4, 7);
    EXPECT_TRUE(harness.effect.setDown().clean());
    FaultPlan log;
    ASSERT_TRUE(harness.effect.setUp(&log).clean());
    ASSERT_EQ(log.count("add_param"), 2);
    for (int n = 1; n <= static_cast<int>(log.calls().size()); ++n) {
        EXPECT_TRUE(harness.effect.setDown().clean());
        FaultPlan plan{{.nth = n}};
        const CommandResult failed = harness.effect.setUp(&plan);
        EXPECT_TRUE(failed.findings.empty()) << failed.describe();
        EXPECT_TRUE(harness.effect.isSetUp() || harness.effect.setUp().clean());
        harness.expectRight(picture, 0.8, 1.0);
    }
}

/// A slider that can't be had counts as 0, the frame is drawn all the same, and the first error is the result.
TEST(FaultSweep, SlidersThatFailAreZeroAndTheFirstErrorStands) {
    const EffectHarness harness;
    struct Case {
        Fault first;
        Fault second;
        PF_Err result;
        double contrast;
        int brightnessCheckouts;
    };
    const Case cases[] = {
        {{.call = "checkout_param 1", .error = 71}, {.call = "checkin_param", .error = 72}, 71, 0.0, 0},
        {{.call = "checkin_param", .error = 73}, {.call = "checkout_param 2", .error = 74}, 73, 1.5, 0},
        {{.call = "checkout_param 2", .error = 75}, {.call = "checkin_param", .nth = 2, .error = 76}, 75, 1.5, 1},
        {{.call = "checkin_param", .nth = 2, .error = 77}, {.call = "none"}, 77, 1.5, 1},
    };
    for (const Case& testCase : cases) {
        SCOPED_TRACE(testCase.result);
        World input = makePicture(8, 3, 6);
        World output(8, 3);
        FaultPlan plan{testCase.first, testCase.second};
        const FrameResult result = harness.effect.render(
            {.input = &input, .output = &output, .values = EffectHarness::sliders(1.5, 40.0), .faults = &plan});
        EXPECT_EQ(result.error, testCase.result);
        EXPECT_EQ(plan.count("checkout_param 2"), testCase.brightnessCheckouts);
        EXPECT_EQ(plan.count("checkin_param"), 2);
        const double brightness = testCase.result == 77 ? 40.0 : 0.0;
        EXPECT_EQ(compareWithOracle(input, output, testCase.contrast, brightness), "");
    }
}

} // namespace

} // namespace Ombrique::Tests
