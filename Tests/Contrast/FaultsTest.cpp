#include "Tests/Support/EffectTest.h"

#include <thread>

namespace Ombrique::Tests {

namespace {

using namespace Hosts;

class Faults : public EffectTest {
protected:
    FrameResult render(FaultPlan& plan, Size size) {
        World input = makePicture(size.width, size.height, 99);
        World output(size.width, size.height);
        return effect.render({.input = &input, .output = &output, .faults = &plan});
    }
};

/// Of the size of the frames between, so that what it leaves meets the next, and of another, so that the targets are
/// made, too.
TEST_F(Faults, OfAFrame) {
    for (const Size size : {Size{7, 5}, {31, 19}})
        sweep("a frame", 1, [this, size](FaultPlan& plan) { return render(plan, size); });
}

/// The first frame of a thread after a set-up makes the thread's context, the programs of the passes and the targets.
TEST_F(Faults, OfALife) {
    sweep("a life", 4, [this](FaultPlan& plan) {
        effect.setDown();
        CommandResult result = effect.setUp(&plan);
        if (!result.clean())
            return result;
        std::jthread([&] {
            const HostContext threadsHost(EGL_OPENGL_API);
            result = render(plan, {7, 5});
            EXPECT_TRUE(threadsHost.isUntouched());
        }).join();
        const CommandResult end = effect.setDown(&plan);
        return result.clean() ? end : result;
    });
}

/// A slider that can't be had counts as 0, the frame is drawn all the same, and the first error is the result.
TEST_F(Faults, OfSliders) {
    const struct {
        Fault first;
        Fault second;
        PF_Err result;
        Correction drawn;
    } rows[] = {
        {{.call = "checkout_param 1", .error = 71}, {.call = "checkin_param", .error = 72}, 71, {0.0, 0.0}},
        {{.call = "checkout_param 2", .error = 75}, {.call = "checkin_param", .nth = 2, .error = 76}, 75, {1.5, 0.0}},
    };
    for (const auto& row : rows) {
        World input = makePicture(8, 3, 6);
        World output(8, 3);
        FaultPlan plan{row.first, row.second};
        const Correction asked{1.5, 40.0};
        EXPECT_EQ(effect.render({.input = &input, .output = &output, .values = asked.sliders(), .faults = &plan}).error,
                  row.result);
        EXPECT_EQ(compareWithOracle(input, output, row.drawn), "") << row.result;
        EXPECT_EQ(plan.count("checkout_param 2"), row.result == 71 ? 0 : 1) << row.result;
        EXPECT_EQ(plan.count("checkin_param"), static_cast<int>(effect.parameters().size())) << row.result;
    }
}

} // namespace

} // namespace Ombrique::Tests
