#include "Platform/OpenGL/CGLCurrent.h"
#include "Plugins/Shared/GL/AEOpenGLContext.h"
#include "Plugins/Shared/GL/AEOpenGLContextManager.h"
#include "Plugins/Shared/GL/PerContext.h"
#include "Plugins/Shared/GL/SaveRestoreGLContextMac.h"
#include "Tests/Shared/GL/RecordedCalls.h"
#include "Tests/Support/HostContext.h"

#include <glbinding/Binding.h>
#include <glbinding/gl/gl.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <memory>
#include <set>
#include <string>
#include <thread>
#include <vector>

using namespace Ombrique::GaussianBlur;
using namespace Ombrique::Tests;
using namespace gl;

namespace {

TEST(Context, WritesItsIdentityInSixLines) {
    testing::internal::CaptureStdout();
    const AEOpenGLContext context(nullptr);
    const std::string text = testing::internal::GetCapturedStdout();
    const std::string version(reinterpret_cast<const char*>(glGetString(GL_VERSION)), 3);
    EXPECT_TRUE(text.starts_with("\nOpenGL Version:  " + version + "\nOpenGL Vendor:   ")) << text;
    EXPECT_EQ(std::ranges::count(text, '\n'), 6);
}

/// Not with an incomplete frame buffer bound, where that is an error, nor where nothing is left.
TEST(Context, FlushesWhatItLeaves) {
    const AEOpenGLContext second(nullptr);
    const CGLContextObj target = CGLGetCurrentContext();
    for (const bool incomplete : {false, true}) {
        const AEOpenGLContext first(nullptr);
        unsigned frameBuffer = 0;
        glGenFramebuffers(1, &frameBuffer);
        glBindFramebuffer(GL_FRAMEBUFFER, incomplete ? frameBuffer : 0);
        const RecordedCalls flushes(glbinding::Binding::Flush);
        for (int call = 0; call < 2; ++call) {
            AEOpenGLContext::makeCurrentFlush(target);
            EXPECT_EQ(flushes.count(), incomplete ? 0 : 1);
            EXPECT_EQ(CGLGetCurrentContext(), target);
        }
    }
}

/// Whichever of the driver's limits is the lowest.
TEST(Context, KnowsTheLongestSide) {
    const AEOpenGLContext known(nullptr); // until there is one, the binding takes no callbacks
    auto& getInteger = glbinding::Binding::GetIntegerv;
    for (const GLenum limit : {GL_MAX_TEXTURE_SIZE, GL_MAX_RENDERBUFFER_SIZE, GL_MAX_VIEWPORT_DIMS}) {
        getInteger.addCallbackMask(glbinding::CallbackMask::After);
        getInteger.setAfterCallback([limit](GLenum name, int* value) {
            if (name == limit)
                value[limit == GL_MAX_VIEWPORT_DIMS ? 1 : 0] = 100; // the height alone
        });
        const AEOpenGLContext lowered(nullptr);
        getInteger.clearAfterCallback();
        EXPECT_EQ(lowered.longestSide(), 100) << static_cast<unsigned>(limit);
    }
}

/// After a release a thread gets a new context.
TEST(ContextManager, GivesEachThreadOneContextThatSharesAndOutlivesIt) {
    for (int round = 0; round < 2; ++round) {
        AEOpenGLContextManager::setupContextManager();
        unsigned texture = 0;
        glGenTextures(1, &texture);
        glBindTexture(GL_TEXTURE_2D, texture);
        AEOpenGLContextManager::getCurrentRenderContext()->makeContextCurrent();
        EXPECT_TRUE(glIsTexture(texture)) << "round " << round;
        std::array<AEOpenGLContext*, 8> contexts = {};
        std::vector<std::jthread> threads;
        for (AEOpenGLContext*& context : contexts)
            threads.emplace_back([&context, texture] {
                context = AEOpenGLContextManager::getCurrentRenderContext();
                EXPECT_EQ(AEOpenGLContextManager::getCurrentRenderContext(), context);
                EXPECT_TRUE(glIsTexture(texture));
            });
        threads.clear();
        EXPECT_EQ(std::set(contexts.begin(), contexts.end()).size(), contexts.size());
        // The ended threads have let go of them, and a thread that knows no binding yet takes over.
        std::jthread([&] {
            contexts[0]->makeContextCurrent();
            EXPECT_TRUE(glIsTexture(texture));
        }).join();
        AEOpenGLContextManager::releaseContextManager();
    }
}

class SaveRestore : public testing::TestWithParam<EGLenum> {};
INSTANTIATE_TEST_SUITE_P(API, SaveRestore, testing::Values(EGL_OPENGL_API, EGL_OPENGL_ES_API),
                         [](const auto& api) { return apiName(api.param); });

TEST_P(SaveRestore, PutsTheHostsContextBackOnceAndOnlyWhenAsked) {
    const HostContext host(GetParam());
    {
        SaveRestoreGLContextMac saved;
        saved.restore(); // without the binding: any call of OpenGL here would end the program
        EXPECT_TRUE(host.isUntouched());
    }
    SaveRestoreGLContextMac saved;
    AEOpenGLContext context(nullptr);
    saved.restore();
    EXPECT_TRUE(host.isUntouched());
    context.makeContextCurrent();
    saved.restore();
    EXPECT_FALSE(host.isUntouched()) << "restored a second time";
    host.makeCurrent();
    {
        const SaveRestoreGLContextMac destroyed;
        context.makeContextCurrent();
    }
    EXPECT_FALSE(host.isUntouched()) << "restored by the destructor";
}

TEST(PerContext, EndsAValueWithItsContext) {
    PerContext<std::shared_ptr<int>> values;
    const auto value = std::make_shared<int>(1);
    {
        const AEOpenGLContext context(nullptr);
        values.current() = value;
    }
    EXPECT_EQ(value.use_count(), 1);
}

} // namespace
