#include "Hosts/Engine/Effect.h"

#include <gtest/gtest.h>

#include <dlfcn.h>
#include <stdexcept>
#include <thread>

using namespace Ombrique::Hosts;

namespace {

/// What a plug-in does while it renders, call by call.
struct Frame {
    Frame(PF_InData* in_data, PF_OutData* out_data, void* extra) : in(in_data), out(out_data) {
        const PF_SmartRenderCallbacks& host = *static_cast<PF_SmartRenderExtra*>(extra)->cb;
        PF_LayerDef* layer = nullptr;
        host.checkout_layer_pixels(in->effect_ref, 7, &layer);
        input = static_cast<unsigned char*>(layer->data);
        host.checkout_output(in->effect_ref, &world);
        output = static_cast<unsigned char*>(world->data);
        acquire("PF Handle Suite", 2);
        handles = static_cast<const PF_HandleSuite1*>(suite);
    }
    ~Frame() { release("PF Handle Suite", 2); }

    Frame& acquire(const char* name, int version) {
        return in->pica_basicP->AcquireSuite(name, version, &suite), *this;
    }
    Frame& release(const char* name, int version) { return in->pica_basicP->ReleaseSuite(name, version), *this; }
    Frame& checkOut(int index) { return in->inter.checkout_param(in->effect_ref, index, 0, 1, 1, &parameter), *this; }
    Frame& checkIn(PF_ProgPtr reference) { return in->inter.checkin_param(reference, &parameter), *this; }
    Frame& checkIn() { return checkIn(in->effect_ref); }
    Frame& create() { return handle = handles->host_new_handle(8), *this; }
    Frame& lock() { return memory = static_cast<char*>(handles->host_lock_handle(handle)), *this; }
    Frame& unlock() { return handles->host_unlock_handle(handle), *this; }
    Frame& dispose() { return handles->host_dispose_handle(handle), *this; }
    Frame& runScript() {
        AEGP_MemHandle result = nullptr;
        acquire("AEGP Utility Suite", 11);
        static_cast<const AEGP_UtilitySuite5*>(suite)->AEGP_ExecuteScript(0, "1", 0, &result, nullptr);
        return release("AEGP Utility Suite", 11);
    }

    PF_InData* in;
    PF_OutData* out;
    unsigned char* input = nullptr;
    unsigned char* output = nullptr;
    PF_LayerDef* world = nullptr;
    PF_ParamDef parameter{};
    const void* suite = nullptr;
    const PF_HandleSuite1* handles = nullptr;
    PF_Handle handle = nullptr;
    char* memory = nullptr;
};

constexpr const char* kItem = "AEGP Item Suite";

/// What a careful host says of a misuse; the worlds are 7 by 5, with rows of 60 bytes.
const struct {
    const char* finding;
    void (*misuse)(Frame& frame);
} kMisuses[] = {
    {"suite \"AEGP Item Suite\" version 10 still held", [](Frame& f) { f.acquire(kItem, 10); }},
    {"version 6 released, but not held", [](Frame& f) { f.acquire(kItem, 10).release(kItem, 6); }},
    {"parameter 1 still checked out", [](Frame& f) { f.checkOut(1); }},
    {"parameter \"Added\" checked in, but not checked out", [](Frame& f) { f.checkOut(1).checkIn().checkIn(); }},
    {"parameter 2 checked out, but not declared", [](Frame& f) { f.checkOut(2); }},
    {"a callback got an effect_ref that isn't this command's", [](Frame& f) { f.checkIn(nullptr); }},
    {"handle of 8 bytes still held", [](Frame& f) { f.create(); }},
    {"handle of 8 bytes disposed of while locked", [](Frame& f) { f.create().lock().dispose(); }},
    {"handle of 8 bytes: written behind its memory",
     [](Frame& f) { ++f.create().lock().unlock().memory[8], f.dispose(); }},
    {"handle locked that isn't held", [](Frame& f) { f.create().dispose().lock(); }},
    {"handle unlocked more often than locked", [](Frame& f) { f.create().lock().unlock().unlock().dispose(); }},
    {"memory handle of 1 bytes still held", [](Frame& f) { f.runScript(); }},
    {"output world: written into the padding of row 0", [](Frame& f) { ++f.output[59]; }},
    {"output world: written before the picture", [](Frame& f) { --f.output[-1]; }},
    {"output world: written behind the picture", [](Frame& f) { ++f.output[60 * 5]; }},
    {"output world: fields of the world changed", [](Frame& f) { --f.world->height; }},
    {"input world: its pixels changed", [](Frame& f) { ++f.input[60 * 4]; }},
    {"input world: written into the padding of row 0", [](Frame& f) { ++f.input[28]; }},
    {"a text of 300 characters doesn't fit",
     [](Frame& f) { f.in->utils->ansi.sprintf(f.out->return_msg, "%300d", 1); }},
    {"an exception left the entry point", [](Frame&) { throw std::runtime_error("thrown"); }},
};

void (*misuse)(Frame& frame) = nullptr;

/// PF_Cmd_SMART_RENDER of the tests' own plug-in.
PF_Err conduct(PF_Cmd, PF_InData* in_data, PF_OutData* out_data, PF_ParamDef*[], PF_LayerDef*, void* extra) {
    Frame frame(in_data, out_data, extra);
    misuse(frame);
    return 78;
}

class EffectTest : public testing::Test {
protected:
    EffectTest() {
        mInput.fill(PF_Pixel8{9, 8, 7, 6});
        EXPECT_TRUE(mEffect.setUp().clean());
    }
    ~EffectTest() override { conductIs(nullptr); }

    void conductIs(PF_EntryPoint entryPoint) const {
        void* const binary = dlopen((mBundle.folder() / "Contents/Linux/Test").c_str(), RTLD_NOW);
        *static_cast<PF_EntryPoint*>(dlsym(binary, "testConduct")) = entryPoint;
        dlclose(binary);
    }
    FrameRequest request(World& output, double added = 1) {
        return {.input = &mInput, .output = &output, .values = {{1, added}}};
    }

    const PluginBundle mBundle{TEST_BUNDLE};
    Effect mEffect{mBundle};
    World mInput{7, 5};
    World mOutput{7, 5};
};

TEST_F(EffectTest, EachMisuseIsFoundAndTheNextFrameIsClean) {
    for (const auto& row : kMisuses) {
        World input(7, 5);
        World output(7, 5);
        misuse = row.misuse;
        conductIs(conduct);
        const FrameResult result = mEffect.render({.input = &input, .output = &output});
        EXPECT_NE(result.describe().find(row.finding), std::string::npos) << row.finding << " != " << result.describe();
        EXPECT_EQ(result.error, std::string(row.finding).starts_with("an exception") ? 512 : 78);
        conductIs(nullptr);
        const FrameResult next = mEffect.render(request(mOutput));
        EXPECT_TRUE(next.clean()) << "after " << row.finding << ": " << next.describe();
    }
}

TEST_F(EffectTest, ErrorsAndMessagesOfThePluginComeBack) {
    const FrameResult failed = mEffect.render(request(mOutput, 77));
    EXPECT_EQ(failed.describe(), "PF_Cmd_SMART_RENDER returned 77");
    EXPECT_EQ(mEffect.about().message, "Test\r1");
}

TEST_F(EffectTest, TheBookIsClosedAfterEachCommand) {
    HostCall call(request(mOutput), mEffect.environment());
    const auto keepASuite = [](PF_Cmd, PF_InData* in_data, PF_OutData*, PF_ParamDef*[], PF_LayerDef*, void*) {
        const void* suite = nullptr;
        return in_data->pica_basicP->AcquireSuite("AEGP Item Suite", 10, &suite);
    };
    EXPECT_EQ(call.send(keepASuite, PF_Cmd_SMART_RENDER).findings.size(), 1u);
    EXPECT_TRUE(call.send(mBundle.entryPoint(), PF_Cmd_ABOUT).clean());
    EXPECT_EQ(call.send(keepASuite, PF_Cmd_SMART_RENDER).message, "") << "that of the command before";
}

TEST_F(EffectTest, RectanglesAreTheRequestWithinTheLayer) {
    FrameRequest wanted = request(mOutput);
    wanted.requestedRect = PF_LRect{-2, 1, 50, 4};
    const FrameResult result = mEffect.render(wanted);
    const PF_LRect& rect = result.resultRect;
    EXPECT_TRUE(rect.left == 0 && rect.top == 1 && rect.right == 7 && rect.bottom == 4);
    EXPECT_TRUE(result.maxResultRect.right == 7 && result.maxResultRect.bottom == 5);
    wanted.layerRect = PF_LRect{10, 10, 10, 12};
    EXPECT_EQ(mEffect.render(wanted).resultRect.right, 0);
}

TEST_F(EffectTest, ASliderMayFollowTheTimeOfTheFrame) {
    FrameRequest wanted = request(mOutput);
    wanted.values.insert_or_assign(1, [](const FrameTime& time) { return time.frame() + time.seconds(); });
    wanted.time = {.time = 40, .step = 10, .scale = 20};
    ASSERT_TRUE(mEffect.render(wanted).clean());
    EXPECT_EQ(mOutput.pixel<PF_Pixel8>(6, 4).red, 8 + 6 + 200);
}

TEST_F(EffectTest, ACallOfTheHostThatFailsEndsTheFrameOrTheSetUp) {
    for (const char* const name : {"checkout_layer", "checkout_layer_pixels 7", "checkout_output"}) {
        FaultPlan plan{{.call = name, .error = 101}};
        FrameRequest wanted = request(mOutput);
        wanted.faults = &plan;
        EXPECT_EQ(mEffect.render(wanted).error, 101) << name;
        EXPECT_EQ(plan.calls().back().find(name), 0u) << plan.calls().back();
        EXPECT_EQ(plan.count("checkout"), 0) << "names count whole";
    }
    EXPECT_TRUE(mEffect.setDown().clean());
    FaultPlan refusal{{.call = "add_param"}};
    EXPECT_EQ(mEffect.setUp(&refusal).error, kInjectedError);
    EXPECT_FALSE(mEffect.isSetUp());
    EXPECT_TRUE(mEffect.setUp().clean());
    EXPECT_EQ(mEffect.parameters().size(), 1u);
}

// Every thread has values, worlds and faults of its own: what leaks from one to another gives a wrong pixel or error.
TEST_F(EffectTest, FramesMayOverlap) {
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < 4; ++thread)
        threads.emplace_back([this, thread] {
            for (int frame = 0; frame < 200; ++frame) {
                World output(7, 5);
                FrameRequest wanted = request(output, thread);
                FaultPlan plan{{.call = "checkout_output", .nth = thread == 0 ? 1 : 1000}};
                wanted.faults = &plan;
                const FrameResult result = mEffect.render(wanted);
                ASSERT_EQ(result.error, thread == 0 ? kInjectedError : 0);
                ASSERT_TRUE(result.findings.empty()) << result.describe();
                ASSERT_EQ(output.pixel<PF_Pixel8>(0, 0).red, thread == 0 ? 0 : 8 + thread);
            }
        });
}

} // namespace
