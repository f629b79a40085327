#include "Tests/Support/HostContext.h"

#include "Tests/Support/EffectHarness.h"
#include "Tests/Support/OpenGLObjects.h"

#include <array>
#include <map>
#include <vector>

namespace Ombrique::Tests {

namespace {

using namespace Hosts;

using State = std::map<unsigned, std::array<int, 4>>;

/// What a host sets beside the context itself: viewport, scissor test, frame buffer, array buffer, texture, alignment
/// of pixels on either way; on the desktop also vertex array, program, and the row lengths.
State state(bool desktop) {
    std::vector<unsigned> names = {0x0BA2, 0x0C11, 0x8CA6, 0x8894, 0x8069, 0x0CF5, 0x0D05};
    if (desktop)
        names.insert(names.end(), {0x85B5, 0x8B8D, 0x0CF2, 0x0D02});
    State state;
    for (const unsigned name : names)
        openGLFunction<void(unsigned, int*)>("glGetIntegerv")(name, state[name].data());
    EXPECT_EQ(openGLFunction<unsigned()>("glGetError")(), 0U);
    return state;
}

void changeState(bool desktop) {
    constexpr unsigned kScissorTest = 0x0C11;
    const auto call = [](const char* name, unsigned target, unsigned value) {
        openGLFunction<void(unsigned, unsigned)>(name)(target, value);
    };
    openGLFunction<void(int, int, int, int)>("glViewport")(1, 2, 3, 4);
    openGLFunction<void(unsigned)>("glEnable")(kScissorTest);
    call("glBindFramebuffer", 0x8D40, 3);
    call("glBindBuffer", 0x8892, 5);
    call("glBindTexture", 0x0DE1, 6);
    call("glPixelStorei", 0x0CF5, 1);
    call("glPixelStorei", 0x0D05, 8);
    if (desktop) {
        call("glPixelStorei", 0x0CF2, 17);
        call("glPixelStorei", 0x0D02, 19);
        unsigned vertexArray = 0;
        openGLFunction<void(int, unsigned*)>("glGenVertexArrays")(1, &vertexArray);
        openGLFunction<void(unsigned)>("glBindVertexArray")(vertexArray);
        const unsigned program = openGLFunction<unsigned()>("glCreateProgram")();
        openGLFunction<void(unsigned)>("glLinkProgram")(program); // without shaders it is the fixed pipeline
        openGLFunction<void(unsigned)>("glUseProgram")(program);
    }
}

class HostContextTest : public testing::TestWithParam<EGLenum> {};

INSTANTIATE_TEST_SUITE_P(Interfaces, HostContextTest, testing::Values(EGL_OPENGL_API, EGL_OPENGL_ES_API),
                         [](const auto& api) { return apiName(api.param); });

TEST_P(HostContextTest, IsBackAfterEachCommandAlsoAfterAFailingOne) {
    const HostContext host(GetParam());
    const bool desktop = GetParam() == EGL_OPENGL_API;
    const State fresh = state(desktop);
    changeState(desktop);
    const State changed = state(desktop);
    for (const auto& [name, value] : changed)
        ASSERT_NE(value, fresh.at(name)) << "not a change: " << name;
    const auto expectUntouched = [&](const std::string& after) {
        EXPECT_TRUE(host.isUntouched()) << after;
        EXPECT_EQ(state(desktop), changed) << after;
    };

    const PluginBundle bundle(OMBRIQUE_TEST_BUNDLE);
    Effect effect(bundle);
    EXPECT_TRUE(effect.setUp().clean());
    expectUntouched("setup");
    World input = makePicture(9, 7, 31);
    World output(9, 7);
    FaultPlan log;
    FrameRequest request{.input = &input, .output = &output, .faults = &log};
    EXPECT_TRUE(effect.render(request).clean());
    expectUntouched("a frame");
    EXPECT_EQ(compareWithOracle(input, output, 1.0, 0.0), "");
    for (int n = 1; n <= static_cast<int>(log.calls().size()); ++n) {
        FaultPlan plan{{.nth = n}};
        request.faults = &plan;
        effect.render(request);
        expectUntouched("a frame without " + log.calls()[static_cast<std::size_t>(n) - 1]);
    }
    EXPECT_TRUE(effect.setDown().clean());
    expectUntouched("setdown");
    request.faults = nullptr;
    effect.render(request);
    expectUntouched("a frame after setdown");
}

} // namespace

} // namespace Ombrique::Tests
