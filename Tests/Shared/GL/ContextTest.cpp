#include "Platform/OpenGL/CGLCurrent.h"
#include "Platform/OpenGL/NSOpenGLContext.h"
#include "Plugins/Shared/GL/AEOpenGLContext.h"
#include "Plugins/Shared/GL/AEOpenGLContextManager.h"
#include "Plugins/Shared/GL/PerContext.h"
#include "Plugins/Shared/GL/SaveRestoreGLContextMac.h"
#include "Tests/Shared/GL/RecordedCalls.h"
#include "Tests/Support/HostContext.h"

#include <glbinding/Binding.h>
#include <glbinding/Meta.h>
#include <glbinding/gl/gl.h>
#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

using namespace Ombrique::GaussianBlur;
using namespace Ombrique::Tests;
using namespace gl;

namespace {

/// An incomplete one.
void bindFrameBuffer() {
    unsigned name = 0;
    glGenFramebuffers(1, &name);
    glBindFramebuffer(GL_FRAMEBUFFER, name);
}

TEST(Context, WritesItsIdentityInSixLines) {
    testing::internal::CaptureStdout();
    const AEOpenGLContext context(nullptr);
    const std::string text = testing::internal::GetCapturedStdout();
    const auto integer = [](GLenum name) {
        int value = 0;
        glGetIntegerv(name, &value);
        return std::to_string(value);
    };
    const auto driver = [](GLenum name) { return std::string(reinterpret_cast<const char*>(glGetString(name))); };
    EXPECT_EQ(text, "\nOpenGL Version:  " + integer(GL_MAJOR_VERSION) + "." + integer(GL_MINOR_VERSION) +
                        "\nOpenGL Vendor:   " + driver(GL_VENDOR) + "\nOpenGL Renderer: " + driver(GL_RENDERER) +
                        "\nOpenGL Revision: " + std::to_string(glbinding::Meta::glRevision()) + " (gl.xml)\n\n");
}

/// Not with an incomplete frame buffer bound, where that is an error, nor where nothing is left.
TEST(Context, FlushesWhatItLeaves) {
    const AEOpenGLContext second(nullptr);
    const CGLContextObj target = CGLGetCurrentContext();
    for (const bool incomplete : {false, true}) {
        const AEOpenGLContext first(nullptr);
        if (incomplete)
            bindFrameBuffer();
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

/// Before the first set-up there is nothing to share with; after a release a thread gets a new context.
TEST(ContextManager, GivesEachThreadOneContextThatSharesAndOutlivesIt) {
    AEOpenGLContextManager::getCurrentRenderContext();
    AEOpenGLContextManager::releaseContextManager();
    for (int round = 0; round < 2; ++round) {
        AEOpenGLContextManager::setupContextManager();
        unsigned texture = 0;
        glGenTextures(1, &texture);
        glBindTexture(GL_TEXTURE_2D, texture);
        AEOpenGLContextManager::getCurrentRenderContext()->makeContextCurrent();
        EXPECT_TRUE(glIsTexture(texture)) << "round " << round;
        std::array<AEOpenGLContext*, 8> contexts = {};
        {
            std::vector<std::jthread> threads;
            for (AEOpenGLContext*& context : contexts)
                threads.emplace_back([&context, texture] {
                    context = AEOpenGLContextManager::getCurrentRenderContext();
                    EXPECT_EQ(AEOpenGLContextManager::getCurrentRenderContext(), context);
                    EXPECT_TRUE(glIsTexture(texture));
                });
        }
        EXPECT_EQ(std::set(contexts.begin(), contexts.end()).size(), contexts.size());
        // The ended threads have let go of them, and a thread that knows no binding yet takes over.
        std::jthread([&] {
            contexts[0]->makeContextCurrent();
            EXPECT_TRUE(glIsTexture(texture));
        }).join();
        AEOpenGLContextManager::releaseContextManager();
        EXPECT_EQ(AEOpenGLContextManager::getSharedDataContext(), nullptr);
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
    std::optional<SaveRestoreGLContextMac> saved(std::in_place);
    AEOpenGLContext context(nullptr);
    bindFrameBuffer();
    saved->restore();
    EXPECT_TRUE(host.isUntouched());
    context.makeContextCurrent();
    saved->restore();
    EXPECT_FALSE(host.isUntouched()) << "restored a second time";
    host.makeCurrent();
    saved.emplace();
    context.makeContextCurrent();
    const CGLContextObj plugins = CGLGetCurrentContext();
    saved.reset();
    EXPECT_EQ(CGLGetCurrentContext(), plugins) << "restored by the destructor";
}

TEST(SaveRestoreWithoutAHost, KeepsAliveWhatWasCurrent) {
    auto hosts = std::make_unique<AEOpenGLContext>(nullptr);
    NSOpenGLContext* const current = NSOpenGLContext::currentContext();
    SaveRestoreGLContextMac saved;
    const AEOpenGLContext plugins(nullptr);
    hosts.reset();
    saved.restore();
    EXPECT_EQ(NSOpenGLContext::currentContext(), current);
}

TEST(PerContext, KeepsAValueForEachContextUntilThatEnds) {
    PerContext<std::shared_ptr<int>> values;
    AEOpenGLContext first(nullptr);
    const auto firstValue = values.current() = std::make_shared<int>(1);
    const auto secondValue = std::make_shared<int>(2);
    {
        const AEOpenGLContext second(nullptr);
        EXPECT_EQ(values.current(), nullptr);
        values.current() = secondValue;
    }
    EXPECT_EQ(secondValue.use_count(), 1) << "the value outlived its context";
    first.makeContextCurrent();
    EXPECT_EQ(values.current(), firstValue);
}

} // namespace
