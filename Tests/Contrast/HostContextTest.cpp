#include "Tests/Support/EffectHarness.h"

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <array>
#include <tuple>

namespace Ombrique::Tests {
namespace {

using namespace Hosts;

/// A context of the host's own, made by EGL without the platform layer and current with two different surfaces, with
/// OpenGL ES as the thread's bound interface and a state in it that isn't the default.
class HostGL {
public:
    HostGL() {
        const auto getPlatformDisplay =
            reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(eglGetProcAddress("eglGetPlatformDisplayEXT"));
        mDisplay = getPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
        eglInitialize(mDisplay, nullptr, nullptr);
        eglBindAPI(EGL_OPENGL_API);
        const EGLint configAttributes[] = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT,
                                           EGL_NONE};
        EGLConfig config = nullptr;
        EGLint count = 0;
        eglChooseConfig(mDisplay, configAttributes, &config, 1, &count);
        const EGLint size[] = {EGL_WIDTH, 8, EGL_HEIGHT, 6, EGL_NONE};
        mDraw = eglCreatePbufferSurface(mDisplay, config, size);
        mRead = eglCreatePbufferSurface(mDisplay, config, size);
        mContext = eglCreateContext(mDisplay, config, EGL_NO_CONTEXT, nullptr);
        EXPECT_TRUE(eglMakeCurrent(mDisplay, mDraw, mRead, mContext));
        eglBindAPI(EGL_OPENGL_ES_API);
        function<void(int, int, int, int)>("glViewport")(1, 2, 3, 4);
        function<void(unsigned)>("glEnable")(kScissorTest);
    }

    ~HostGL() {
        eglBindAPI(EGL_OPENGL_API);
        eglMakeCurrent(mDisplay, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
        eglDestroyContext(mDisplay, mContext);
        eglDestroySurface(mDisplay, mDraw);
        eglDestroySurface(mDisplay, mRead);
    }

    void expectCurrent(const char* after) const {
        EXPECT_EQ(eglQueryAPI(), static_cast<EGLenum>(EGL_OPENGL_ES_API)) << after;
        EXPECT_EQ(std::tuple(eglGetCurrentDisplay(), eglGetCurrentContext(), eglGetCurrentSurface(EGL_DRAW),
                             eglGetCurrentSurface(EGL_READ)),
                  std::tuple(mDisplay, mContext, mDraw, mRead))
            << after;
        std::array<int, 4> viewport{};
        function<void(unsigned, int*)>("glGetIntegerv")(kViewport, viewport.data());
        EXPECT_EQ(viewport, (std::array{1, 2, 3, 4})) << after;
        EXPECT_TRUE(function<unsigned char(unsigned)>("glIsEnabled")(kScissorTest)) << after;
        EXPECT_EQ(function<unsigned()>("glGetError")(), 0U) << after;
    }

private:
    static constexpr unsigned kScissorTest = 0x0C11;
    static constexpr unsigned kViewport = 0x0BA2;

    template <typename Function> static Function* function(const char* name) {
        return reinterpret_cast<Function*>(eglGetProcAddress(name));
    }

    EGLDisplay mDisplay = EGL_NO_DISPLAY;
    EGLSurface mDraw = EGL_NO_SURFACE;
    EGLSurface mRead = EGL_NO_SURFACE;
    EGLContext mContext = EGL_NO_CONTEXT;
};

TEST(HostContext, IsBackAfterEachCommandAlsoAfterAFailingOne) {
    const HostGL host;
    PluginBundle bundle(OMBRIQUE_TEST_BUNDLE);
    Effect effect(bundle);
    EXPECT_TRUE(effect.setUp().clean());
    host.expectCurrent("setup");
    World input = makePicture(9, 7, 31);
    World output(9, 7);
    FaultPlan log;
    const FrameRequest request{.input = &input, .output = &output, .faults = &log};
    EXPECT_TRUE(effect.render(request).clean());
    host.expectCurrent("a frame");
    EXPECT_EQ(compareWithOracle(input, output, 1.0, 0.0), "");
    for (int n = 1; n <= static_cast<int>(log.calls().size()); ++n) {
        FaultPlan plan{{.nth = n}};
        FrameRequest failing = request;
        failing.faults = &plan;
        effect.render(failing);
        host.expectCurrent(("a frame without " + log.calls()[static_cast<std::size_t>(n) - 1]).c_str());
    }
    EXPECT_TRUE(effect.setDown().clean());
    host.expectCurrent("setdown");
    effect.render(request);
    host.expectCurrent("a frame after setdown");
}

} // namespace
} // namespace Ombrique::Tests
