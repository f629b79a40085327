#include "Tests/Support/EffectTest.h"

#include <cstring>
#include <tuple>

namespace Ombrique::Tests {

namespace {

using namespace Hosts;

class Commands : public EffectTest {
protected:
    PF_Err send(PF_Cmd command, FrameRequest request = {}) const {
        HostCall call(request, effect.environment());
        PF_SmartRenderExtra extra{HostCall::smartRenderCallbacks()};
        const CommandResult result = call.send(bundle.entryPoint(), command, &extra);
        EXPECT_TRUE(result.findings.empty()) << result.describe();
        return result.error;
    }
};

TEST_F(Commands, AboutGivesTheText) { EXPECT_EQ(effect.about().message, "Ombrique Contrast v1.0\rOmbrique Contrast"); }

TEST_F(Commands, SetupDeclaresTheSliders) {
    const struct {
        const char* name;
        float value;
        float least;
        float most;
        std::int16_t precision;
    } sliders[] = {{"Contrast Value", 1.0f, 0.0f, 10.0f, 2}, {"Brightness Value", 0.0f, -100.0f, 100.0f, 1}};
    const auto& parameters = effect.parameters();
    ASSERT_EQ(parameters.size(), std::size(sliders));
    EXPECT_EQ(effect.declaration().num_params, 3); // the input layer counts, and is not declared
    for (std::size_t i = 0; i < std::size(sliders); ++i) {
        const auto& [name, value, least, most, precision] = sliders[i];
        PF_ParamDef expected{}; // all that isn't named is zero
        expected.uu.id = static_cast<std::int32_t>(i) + 1;
        expected.param_type = 10;
        std::strcpy(expected.name, name);
        PF_FloatSliderDef& values = expected.u.fs_d;
        values.value = values.dephault = value;
        values.valid_min = values.slider_min = least;
        values.valid_max = values.slider_max = most;
        values.precision = precision;
        values.curve_tolerance = 0.05f;
        EXPECT_EQ(std::memcmp(&parameters[i], &expected, sizeof expected), 0) << name;
    }
}

TEST_F(Commands, OthersTouchNothing) {
    for (const PF_Cmd command : std::initializer_list<PF_Cmd>{2, 5, PF_Cmd_RENDER, 22, 25, -1, 1 << 30}) {
        FaultPlan log;
        HostCall call({.faults = &log});
        PF_OutData untouched;
        std::memset(&untouched, 0x5A, sizeof untouched);
        *call.outData() = untouched;
        EXPECT_EQ(bundle.entryPoint()(command, call.inData(), call.outData(), nullptr, nullptr, nullptr), 0);
        EXPECT_EQ(std::memcmp(call.outData(), &untouched, sizeof untouched), 0) << "command " << command;
        EXPECT_TRUE(log.calls().empty()) << "command " << command;
    }
}

/// The layer as the callback below answers, and with what it was asked.
struct Layer {
    PF_CheckoutResult result;
    PF_Err error;
    std::tuple<std::int32_t, std::int32_t, std::int32_t, std::int32_t, std::uint32_t> asked;
    PF_RenderRequest request;
} layer;

PF_Err answerLayer(PF_ProgPtr, std::int32_t index, std::int32_t id, const PF_RenderRequest* request, std::int32_t time,
                   std::int32_t step, std::uint32_t scale, PF_CheckoutResult* result) {
    layer.asked = {index, id, time, step, scale};
    layer.request = *request;
    *result = layer.result;
    if (layer.error < 0)
        throw "no plug-in knows this";
    return layer.error;
}

TEST_F(Commands, PreRenderAsksForTheInputAndWidensTheAnswerByIt) {
    const struct {
        const char* name;
        PF_LRect layer;
        PF_LRect before;
        PF_LRect after;
    } rows[] = {{"both empty", {3, 3, 3, 9}, {5, 5, 5, 5}, {3, 3, 3, 9}},
                {"empty answer", {1, 2, 3, 4}, {7, 1, 7, 9}, {1, 2, 3, 4}},
                {"empty input", {9, 9, 8, 12}, {1, 2, 3, 4}, {1, 2, 3, 4}},
                {"apart", {-5, -6, -1, -2}, {10, 20, 30, 40}, {-5, -6, 30, 40}},
                {"inside", {2, 2, 3, 3}, {0, 1, 9, 8}, {0, 1, 9, 8}}};
    const auto equal = [](const auto& a, const auto& b) { return std::memcmp(&a, &b, sizeof a) == 0; };
    const auto* other = &rows[1]; // for the greatest rectangle
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        HostCall call({.time = {7, 2, 25}});
        PF_PreRenderInput input{{{1, 2, 30, 40}, 1, 15, 1}};
        PF_PreRenderOutput output{row.before, other->before, 0, nullptr};
        const PF_PreRenderCallbacks callbacks{answerLayer};
        PF_PreRenderExtra extra{&input, &output, &callbacks};
        layer = {.result = {row.layer, other->layer}, .error = 0, .asked = {}, .request = {}};
        ASSERT_EQ(call.send(bundle.entryPoint(), PF_Cmd_SMART_PRE_RENDER, &extra).error, 0);
        EXPECT_TRUE(equal(output.result_rect, row.after));
        EXPECT_TRUE(equal(output.max_result_rect, other->after));
        EXPECT_TRUE(equal(layer.request, input.output_request));
        EXPECT_EQ(layer.asked, (decltype(layer.asked){0, 0, 7, 2, 25}));
        other = &row;
        for (const auto& [error, due] : {std::pair{91, 91}, {-1, 512}}) { // an error, and an exception of the host's
            layer.error = error;
            output.result_rect = row.before;
            EXPECT_EQ(call.send(bundle.entryPoint(), PF_Cmd_SMART_PRE_RENDER, &extra).error, due);
            EXPECT_TRUE(equal(output.result_rect, row.before));
        }
    }
}

/// The host's suites, each that is acquired or released, and whose context was current meanwhile.
struct Desk {
    const SPBasicSuite* suites;
    const HostContext* host;
    std::string log;

    void note(const char* name) { log += std::string(name) + (host->isUntouched() ? ", host\n" : ", effect\n"); }
} desk;

SPErr acquire(const char* name, std::int32_t version, const void** suite) {
    desk.note(name);
    return desk.suites->AcquireSuite(name, version, suite);
}

SPErr release(const char* name, std::int32_t version) {
    desk.note(name);
    return desk.suites->ReleaseSuite(name, version);
}

TEST_F(Commands, AFrameHoldsItsSuitesUntilTheHostsContextIsBack) {
    World world = makePicture(7, 5, 1);
    HostCall call({.input = &world, .output = &world}, effect.environment());
    PF_PreRenderInput input{{{0, 0, 7, 5}, 0, 0, 0}};
    PF_PreRenderOutput output{};
    PF_PreRenderExtra preRender{&input, &output, HostCall::preRenderCallbacks()};
    host.makeCurrent();
    ASSERT_EQ(call.send(bundle.entryPoint(), PF_Cmd_SMART_PRE_RENDER, &preRender).error, 0);
    desk = {call.inData()->pica_basicP, &host, ""};
    SPBasicSuite suites{acquire, release};
    call.inData()->pica_basicP = &suites;
    PF_SmartRenderExtra extra{HostCall::smartRenderCallbacks()};
    EXPECT_EQ(bundle.entryPoint()(PF_Cmd_SMART_RENDER, call.inData(), call.outData(), nullptr, nullptr, &extra), 0);
    EXPECT_EQ(desk.log, "AEGP PF Interface Suite, effect\nAEGP Layer Suite, effect\nAEGP Item Suite, effect\n"
                        "PF Handle Suite, effect\nPF Handle Suite, effect\nAEGP Item Suite, host\n"
                        "AEGP Layer Suite, host\nAEGP PF Interface Suite, host\n");
}

TEST_F(Commands, OutOfOrder) {
    testing::internal::CaptureStdout(); // where each context that is made writes its identity
    check([&] { EXPECT_EQ(send(PF_Cmd_GLOBAL_SETUP), 0) << "a second one"; });
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    check([&] {
        World nothing(0, 0); // the targets of no pixels at all must be made anew, too
        EXPECT_TRUE(effect.render({.input = &nothing, .output = &nothing}).clean());
        EXPECT_TRUE(effect.setDown().clean());
        EXPECT_EQ(send(PF_Cmd_GLOBAL_SETDOWN), 0);
        FaultPlan log;
        World world = makePicture(5, 3, 1);
        EXPECT_EQ(send(PF_Cmd_SMART_RENDER, {.input = &world, .output = &world, .faults = &log}), 516);
        EXPECT_TRUE(log.calls().empty());
    });
}

TEST_F(Commands, FromWithinAFrameAreRefused) {
    World input = makePicture(9, 7, 4);
    World output(9, 7);
    World inner = makePicture(4, 3, 2);
    int refused = 0;
    const auto contrast = [&](const FrameTime&) {
        refused += effect.render({.input = &inner, .output = &inner}).error == PF_Err_BAD_CALLBACK_PARAM ? 1 : 0;
        for (const PF_Cmd command : {PF_Cmd_GLOBAL_SETUP, PF_Cmd_GLOBAL_SETDOWN})
            refused += send(command) == PF_Err_BAD_CALLBACK_PARAM ? 1 : 0;
        return 1.6;
    };
    check([&] { EXPECT_TRUE(effect.render({.input = &input, .output = &output, .values = {{1, contrast}}}).clean()); });
    EXPECT_EQ(compareWithOracle(input, output, {.contrast = 1.6}), "");
    EXPECT_EQ(refused, 3);
}

} // namespace

} // namespace Ombrique::Tests
