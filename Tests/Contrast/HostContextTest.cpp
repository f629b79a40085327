#include "Tests/Support/HostContext.h"
#include "Tests/Support/EffectHarness.h"

#include <array>

namespace Ombrique::Tests {
namespace {

using namespace Hosts;

constexpr unsigned kScissorTest = 0x0C11; // GL_SCISSOR_TEST
constexpr unsigned kViewport = 0x0BA2;    // GL_VIEWPORT

template <typename Function> Function* function(const char* name) {
    return reinterpret_cast<Function*>(eglGetProcAddress(name));
}

void expectUntouched(const HostContext& host, const std::string& after) {
    EXPECT_TRUE(host.isUntouched()) << after;
    std::array<int, 4> viewport{};
    function<void(unsigned, int*)>("glGetIntegerv")(kViewport, viewport.data());
    EXPECT_EQ(viewport, (std::array{1, 2, 3, 4})) << after;
    EXPECT_TRUE(function<unsigned char(unsigned)>("glIsEnabled")(kScissorTest)) << after;
    EXPECT_EQ(function<unsigned()>("glGetError")(), 0U) << after;
}

class HostContextTest : public testing::TestWithParam<EGLenum> {};

INSTANTIATE_TEST_SUITE_P(Interfaces, HostContextTest, testing::Values(EGL_OPENGL_API, EGL_OPENGL_ES_API),
                         [](const auto& api) { return apiName(api.param); });

TEST_P(HostContextTest, IsBackAfterEachCommandAlsoAfterAFailingOne) {
    const HostContext host(GetParam());
    function<void(int, int, int, int)>("glViewport")(1, 2, 3, 4);
    function<void(unsigned)>("glEnable")(kScissorTest);

    const PluginBundle bundle(OMBRIQUE_TEST_BUNDLE);
    Effect effect(bundle);
    EXPECT_TRUE(effect.setUp().clean());
    expectUntouched(host, "setup");
    World input = makePicture(9, 7, 31);
    World output(9, 7);
    FaultPlan log;
    FrameRequest request{.input = &input, .output = &output, .faults = &log};
    EXPECT_TRUE(effect.render(request).clean());
    expectUntouched(host, "a frame");
    EXPECT_EQ(compareWithOracle(input, output, 1.0, 0.0), "");
    for (int n = 1; n <= static_cast<int>(log.calls().size()); ++n) {
        FaultPlan plan{{.nth = n}};
        request.faults = &plan;
        effect.render(request);
        expectUntouched(host, "a frame without " + log.calls()[static_cast<std::size_t>(n) - 1]);
    }
    EXPECT_TRUE(effect.setDown().clean());
    expectUntouched(host, "setdown");
    request.faults = nullptr;
    effect.render(request);
    expectUntouched(host, "a frame after setdown");
}

} // namespace
} // namespace Ombrique::Tests
