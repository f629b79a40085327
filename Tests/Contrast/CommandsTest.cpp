#include "Tests/Support/EffectHarness.h"

#include <cstring>

namespace Ombrique::Tests {

namespace {

using namespace Hosts;

TEST(Commands, AboutGivesTheText) {
    const EffectHarness harness;
    EXPECT_EQ(harness.effect.about().message, "Ombrique Contrast v1.0\rOmbrique Contrast");

    FaultPlan noSuite{{.call = "AcquireSuite PF ANSI Suite"}};
    const CommandResult result = harness.effect.about(&noSuite);
    EXPECT_EQ(result.error, PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(result.message, "");
    EXPECT_TRUE(result.findings.empty()) << result.describe();
}

/// A float slider of which all that isn't named is zero.
PF_ParamDef slider(int id, const char* name, float value, float least, float most, std::int16_t precision) {
    PF_ParamDef definition{};
    definition.uu.id = id;
    definition.param_type = 10;
    std::strcpy(definition.name, name);
    PF_FloatSliderDef& values = definition.u.fs_d;
    values.value = value;
    values.dephault = value;
    values.valid_min = values.slider_min = least;
    values.valid_max = values.slider_max = most;
    values.precision = precision;
    values.curve_tolerance = 0.05F;
    return definition;
}

TEST(Commands, SetupDeclaresTheSliders) {
    const EffectHarness harness;
    EXPECT_EQ(harness.effect.declaration().num_params, 3);
    const auto& parameters = harness.effect.parameters();
    ASSERT_EQ(parameters.size(), 2U); // the input layer is not declared

    const PF_ParamDef contrast = slider(1, "Contrast Value", 1.0F, 0.0F, 10.0F, 2);
    const PF_ParamDef brightness = slider(2, "Brightness Value", 0.0F, -100.0F, 100.0F, 1);
    EXPECT_EQ(std::memcmp(&parameters[0], &contrast, sizeof contrast), 0);
    EXPECT_EQ(std::memcmp(&parameters[1], &brightness, sizeof brightness), 0);
}

TEST(Commands, AFailingFirstSliderEndsTheDeclaration) {
    const EffectHarness harness;
    FaultPlan plan{{.call = "add_param", .error = 77}};
    HostCall call({.faults = &plan});
    EXPECT_EQ(call.send(harness.bundle.entryPoint(), PF_Cmd_PARAMS_SETUP).error, 77);
    EXPECT_EQ(plan.count("add_param"), 1);
    EXPECT_EQ(call.outData()->num_params, 3);
}

TEST(Commands, OthersTouchNothing) {
    const EffectHarness harness;
    for (const PF_Cmd command : std::initializer_list<PF_Cmd>{2, 5, PF_Cmd_RENDER, 22, 25, -1, 1 << 30}) {
        FaultPlan log;
        HostCall call({.faults = &log});
        PF_OutData untouched;
        std::memset(&untouched, 0x5A, sizeof untouched);
        *call.outData() = untouched;
        EXPECT_EQ(harness.bundle.entryPoint()(command, call.inData(), call.outData(), nullptr, nullptr, nullptr), 0);
        EXPECT_EQ(std::memcmp(call.outData(), &untouched, sizeof untouched), 0) << "command " << command;
        EXPECT_TRUE(log.calls().empty()) << "command " << command;
    }
}

/// What the layer covers, what the answer holds before, and what it holds afterwards.
struct PreRenderCase {
    const char* name;
    PF_LRect layer;
    PF_LRect before;
    PF_LRect after;
};

void PrintTo(const PreRenderCase& testCase, std::ostream* stream) { *stream << testCase.name; }

class PreRender : public testing::TestWithParam<PreRenderCase> {};

PF_LRect layerRect; // what the callback below answers
PF_RenderRequest seenRequest;

PF_Err answerLayer(PF_ProgPtr, std::int32_t index, std::int32_t id, const PF_RenderRequest* request, std::int32_t,
                   std::int32_t, std::uint32_t, PF_CheckoutResult* result) {
    EXPECT_EQ(index, 0);
    EXPECT_EQ(id, 0);
    seenRequest = *request;
    result->result_rect = layerRect;
    result->max_result_rect = layerRect;
    return PF_Err_NONE;
}

TEST_P(PreRender, WidensTheAnswerByTheInput) {
    const EffectHarness harness;
    HostCall call;
    PF_PreRenderInput input{{{1, 2, 30, 40}, 1, 15, 1}};
    PF_PreRenderOutput output{GetParam().before, GetParam().before, 5, &call};
    const PF_PreRenderCallbacks callbacks{answerLayer};
    PF_PreRenderExtra extra{&input, &output, &callbacks};
    layerRect = GetParam().layer;
    ASSERT_EQ(call.send(harness.bundle.entryPoint(), PF_Cmd_SMART_PRE_RENDER, &extra).error, 0);
    EXPECT_EQ(std::memcmp(&output.result_rect, &GetParam().after, sizeof(PF_LRect)), 0);
    EXPECT_EQ(std::memcmp(&output.max_result_rect, &GetParam().after, sizeof(PF_LRect)), 0);
    EXPECT_EQ(std::memcmp(&seenRequest.rect, &input.output_request.rect, sizeof(PF_LRect)), 0);
    EXPECT_EQ(seenRequest.preserve_rgb_of_zero_alpha, 1);
    EXPECT_EQ(output.flags, 5);
    EXPECT_EQ(output.pre_render_data, &call);
}

INSTANTIATE_TEST_SUITE_P(Rectangles, PreRender,
                         testing::Values(PreRenderCase{"both empty", {3, 3, 3, 9}, {5, 5, 5, 5}, {3, 3, 3, 9}},
                                         PreRenderCase{"empty answer", {1, 2, 3, 4}, {7, 1, 7, 9}, {1, 2, 3, 4}},
                                         PreRenderCase{"empty input", {9, 9, 8, 12}, {1, 2, 3, 4}, {1, 2, 3, 4}},
                                         PreRenderCase{"apart", {-5, -6, -1, -2}, {10, 20, 30, 40}, {-5, -6, 30, 40}},
                                         PreRenderCase{"inside", {2, 2, 3, 3}, {0, 1, 9, 8}, {0, 1, 9, 8}}));

TEST(Commands, AFailingLayerCheckoutIsTheResult) {
    const EffectHarness harness;
    World world = makePicture(3, 2, 1);
    FaultPlan plan{{.call = "checkout_layer", .error = 91}};
    EXPECT_EQ(harness.effect.render({.input = &world, .output = &world, .faults = &plan}).error, 91);
}

} // namespace

} // namespace Ombrique::Tests
