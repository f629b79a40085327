#include "Hosts/Engine/Effect.h"

#include "Tests/Hosts/Engine/TestPlugin.h"

#include <gtest/gtest.h>

#include <array>
#include <thread>

using namespace Ombrique::Hosts;

namespace {

class EffectTest : public testing::Test {
protected:
    EffectTest() {
        mInput.fill(PF_Pixel8{9, 8, 7, 6});
        EXPECT_TRUE(mEffect.setUp().clean());
    }

    FrameRequest request(World& output, Conduct conduct, double added = 1) {
        return {.input = &mInput, .output = &output, .values = {{1, static_cast<int>(conduct)}, {2, added}}};
    }

    const PluginBundle mBundle{TEST_BUNDLE};
    Effect mEffect{mBundle};
    World mInput{7, 5};
    World mOutput{7, 5};
};

struct Objection {
    Conduct conduct;
    const char* finding;
};

const Objection kObjections[] = {
    {Conduct::KeepSuite, "suite \"AEGP Item Suite\" version 10 still held"},
    {Conduct::ReleaseOtherVersion, "suite \"AEGP Item Suite\" version 6 released, but not held"},
    {Conduct::ReleaseOtherVersion, "suite \"AEGP Item Suite\" version 10 still held"},
    {Conduct::KeepParameter, "parameter 1 still checked out"},
    {Conduct::CheckInTwice, "parameter \"Conduct\" checked in, but not checked out"},
    {Conduct::AskForMissingParameter, "parameter 3 checked out, but not declared"},
    {Conduct::KeepHandle, "handle of 8 bytes still held"},
    {Conduct::DisposeLockedHandle, "handle of 8 bytes disposed of while locked"},
    {Conduct::OverrunHandle, "handle of 8 bytes: written behind its memory"},
    {Conduct::UseDisposedHandle, "handle locked that isn't held"},
    {Conduct::UnlockTwice, "handle unlocked more often than locked"},
    {Conduct::KeepMemoryHandle, "memory handle of 1 bytes still held"},
    {Conduct::WriteIntoPadding, "output world: written into the padding of row 0"},
    {Conduct::WriteBeforePicture, "output world: written before the picture"},
    {Conduct::WriteBehindPicture, "output world: written behind the picture"},
    {Conduct::WriteIntoInput, "input world: its pixels changed"},
    {Conduct::WriteIntoInputPadding, "input world: written into the padding of row 0"},
    {Conduct::ChangeLayer, "output world: fields of the world changed"},
    {Conduct::WriteLongMessage, "a text of 300 characters doesn't fit into return_msg"},
    {Conduct::UseForeignEffectRef, "a callback got an effect_ref that isn't this command's"},
    {Conduct::Throw, "an exception left the entry point"},
};

TEST_F(EffectTest, EachMisuseIsFoundAndTheNextFrameIsClean) {
    for (const Objection& objection : kObjections) {
        World output(7, 5);
        const std::string found = mEffect.render(request(output, objection.conduct)).describe();
        EXPECT_NE(found.find(objection.finding), std::string::npos) << objection.finding << " isn't in " << found;
        World input(7, 5);
        World next(7, 5);
        const FrameResult result = mEffect.render({.input = &input, .output = &next, .values = {{2, 3.0}}});
        EXPECT_TRUE(result.clean()) << "after " << objection.finding << ": " << result.describe();
    }
}

TEST_F(EffectTest, ErrorsAndMessagesOfThePluginComeBack) {
    const FrameResult failed = mEffect.render(request(mOutput, Conduct::ReturnError));
    EXPECT_EQ(failed.error, 77);
    EXPECT_EQ(failed.command, PF_Cmd_SMART_RENDER);
    EXPECT_TRUE(failed.findings.empty());
    EXPECT_EQ(mEffect.render(request(mOutput, Conduct::Throw)).error, PF_Err_INTERNAL_STRUCT_DAMAGED);
    EXPECT_EQ(mEffect.about().message, "Test\r1");
}

TEST_F(EffectTest, TheBookIsClosedAfterEachCommand) {
    HostCall call(request(mOutput, Conduct::KeepSuite), mEffect.environment());
    call.layerCheckouts().push_back(7);
    PF_SmartRenderExtra extra{HostCall::smartRenderCallbacks()};
    EXPECT_EQ(call.send(mBundle.entryPoint(), PF_Cmd_SMART_RENDER, &extra).findings.size(), 1u);
    EXPECT_TRUE(call.send(mBundle.entryPoint(), PF_Cmd_ABOUT).clean());
}

TEST_F(EffectTest, RectanglesAreTheRequestWithinTheLayer) {
    FrameRequest wanted = request(mOutput, Conduct::Good);
    wanted.requestedRect = PF_LRect{-2, 1, 50, 4};
    const FrameResult result = mEffect.render(wanted);
    const PF_LRect& rect = result.resultRect;
    EXPECT_TRUE(rect.left == 0 && rect.top == 1 && rect.right == 7 && rect.bottom == 4);
    EXPECT_TRUE(result.maxResultRect.right == 7 && result.maxResultRect.bottom == 5);
    wanted.layerRect = PF_LRect{10, 10, 10, 12};
    EXPECT_EQ(mEffect.render(wanted).resultRect.right, 0);
}

TEST_F(EffectTest, ASliderMayFollowTheTimeOfTheFrame) {
    FrameRequest wanted = request(mOutput, Conduct::Good);
    wanted.values.insert_or_assign(2, [](const FrameTime& time) { return time.frame() + time.seconds(); });
    wanted.time = {.time = 40, .step = 10, .scale = 20};
    ASSERT_TRUE(mEffect.render(wanted).clean());
    EXPECT_EQ(mOutput.pixel<PF_Pixel8>(6, 4).alpha, 9 + 6);
}

// Fails each call of set-up and of a frame in turn, and looks at what the effect is afterwards.
TEST_F(EffectTest, EachCallOfTheHostCanFail) {
    FaultPlan log;
    FrameRequest wanted = request(mOutput, Conduct::Good);
    wanted.faults = &log;
    ASSERT_TRUE(mEffect.render(wanted).clean());
    ASSERT_EQ(log.calls().size(), 7u);
    EXPECT_EQ(log.count("checkout_param"), 2);
    EXPECT_EQ(log.count("checkout_param 2"), 1);
    EXPECT_EQ(log.count("checkout_layer"), 1);
    EXPECT_EQ(log.calls().front(), "checkout_layer 7");
    for (int nth = 1; nth <= 3; ++nth) {
        FaultPlan plan{{.nth = nth, .error = 100 + nth}};
        wanted.faults = &plan;
        EXPECT_EQ(mEffect.render(wanted).error, 100 + nth) << log.calls()[static_cast<std::size_t>(nth) - 1];
        EXPECT_EQ(plan.fired(), 1);
    }

    EXPECT_TRUE(mEffect.setDown().clean());
    FaultPlan second{{.call = "add_param", .nth = 2}};
    EXPECT_EQ(mEffect.setUp(&second).error, kInjectedError);
    EXPECT_FALSE(mEffect.isSetUp());
    EXPECT_TRUE(mEffect.setUp().clean());
    EXPECT_EQ(mEffect.parameters().size(), 2u);
}

// Every thread has values, worlds and faults of its own: what leaks from one to another gives a wrong pixel or error.
TEST_F(EffectTest, FramesMayOverlap) {
    const auto renderMany = [this](int thread) {
        for (int frame = 0; frame < 200; ++frame) {
            World output(7, 5);
            FrameRequest wanted = request(output, frame % 2 ? Conduct::Good : Conduct::KeepHandle, thread);
            FaultPlan plan{{.call = "checkout_output", .nth = thread == 0 ? 1 : 1000}};
            wanted.faults = &plan;
            const FrameResult result = mEffect.render(wanted);
            ASSERT_EQ(result.error, thread == 0 ? kInjectedError : 0);
            ASSERT_EQ(result.findings.size(), thread != 0 && frame % 2 == 0 ? 1u : 0u) << result.describe();
            ASSERT_EQ(output.pixel<PF_Pixel8>(0, 0).alpha, thread == 0 ? 0 : 9 + thread);
        }
    };
    std::array<std::thread, 4> threads;
    for (std::size_t thread = 0; thread < threads.size(); ++thread)
        threads[thread] = std::thread(renderMany, static_cast<int>(thread));
    for (std::thread& thread : threads)
        thread.join();
}

} // namespace
