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

#include <algorithm>
#include <array>
#include <iostream>
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

using Pixel = std::array<unsigned char, 4>;
constexpr Pixel kPixel = {11, 22, 33, 44};

/// A texture of kPixel, made in the current context, complete for all that share with it.
unsigned makeTexture() {
    unsigned texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 1, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, kPixel.data());
    glBindTexture(GL_TEXTURE_2D, 0);
    glFinish();
    return texture;
}

Pixel readTexture(unsigned texture) {
    Pixel pixel = {};
    glBindTexture(GL_TEXTURE_2D, texture);
    glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, pixel.data());
    return pixel;
}

/// Leaves a frame buffer bound, to draw to one pixel or to nothing.
void bindFrameBuffer(bool complete) {
    std::array<unsigned, 2> names{};
    glGenFramebuffers(1, &names[0]);
    glBindFramebuffer(GL_FRAMEBUFFER, names[0]);
    if (!complete)
        return;
    glGenRenderbuffers(1, &names[1]);
    glBindRenderbuffer(GL_RENDERBUFFER, names[1]);
    glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA8, 1, 1);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, names[1]);
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

/// What is drawn to is flushed before the switch, and nothing else.
TEST(Context, FlushesWhatItLeaves) {
    const AEOpenGLContext second(nullptr);
    const CGLContextObj secondObject = CGLGetCurrentContext();
    const struct {
        const char* name;
        std::optional<bool> complete; // none: nothing is bound
        bool isCurrent;
        int flushes;
    } rows[] = {{"nothing bound", {}, false, 1},
                {"a complete frame buffer", true, false, 1},
                {"an incomplete frame buffer", false, false, 0},
                {"the same context", true, true, 0}};
    for (const auto& row : rows) {
        AEOpenGLContext first(nullptr);
        const CGLContextObj firstObject = CGLGetCurrentContext();
        if (row.complete)
            bindFrameBuffer(*row.complete);
        const RecordedCalls flushes(glbinding::Binding::Flush);
        AEOpenGLContext::makeCurrentFlush(row.isCurrent ? firstObject : secondObject);
        EXPECT_EQ(flushes.count(), row.flushes) << row.name;
        EXPECT_EQ(CGLGetCurrentContext(), row.isCurrent ? firstObject : secondObject) << row.name;
        first.makeContextCurrent(); // the platform's class switches, so that nothing is left to flush
        EXPECT_EQ(flushes.count(), row.flushes) << row.name;
        EXPECT_EQ(CGLGetCurrentContext(), firstObject) << row.name;
        EXPECT_EQ(glGetError(), GL_NO_ERROR) << row.name;
    }
    CGLSetCurrentContext(nullptr);
    AEOpenGLContext::makeCurrentFlush(secondObject);
    EXPECT_EQ(CGLGetCurrentContext(), secondObject);
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
    EXPECT_GE(AEOpenGLContext(nullptr).longestSide(), 1024);
}

TEST(ContextManager, GivesEachThreadOneContextThatSharesAndOutlivesIt) {
    AEOpenGLContextManager::setupContextManager();
    const unsigned texture = makeTexture();
    std::array<AEOpenGLContext*, 8> contexts = {};
    testing::internal::CaptureStdout();
    {
        std::vector<std::jthread> threads;
        for (AEOpenGLContext*& context : contexts)
            threads.emplace_back([&context, texture] {
                context = AEOpenGLContextManager::getCurrentRenderContext();
                for (int frame = 0; frame < 20; ++frame) {
                    EXPECT_EQ(AEOpenGLContextManager::getCurrentRenderContext(), context);
                    context->makeContextCurrent();
                    EXPECT_EQ(readTexture(texture), kPixel);
                }
            });
    }
    const std::string text = testing::internal::GetCapturedStdout();
    EXPECT_EQ(std::ranges::count(text, '\n'), 6 * std::ssize(contexts)) << "one identity a context";
    EXPECT_EQ(std::set(contexts.begin(), contexts.end()).size(), contexts.size());

    // The ended threads have let go of them, and a thread that knows no binding yet takes over.
    std::jthread([&] {
        AEOpenGLContext* const own = AEOpenGLContextManager::getCurrentRenderContext();
        EXPECT_EQ(std::ranges::count(contexts, own), 0) << "of a thread that has ended";
    }).join();
    std::jthread([&] {
        contexts[0]->makeContextCurrent();
        EXPECT_EQ(readTexture(texture), kPixel);
    }).join();
    for (int round = 0; round < 2; ++round) {
        AEOpenGLContextManager::releaseContextManager();
        EXPECT_EQ(AEOpenGLContextManager::getSharedDataContext(), nullptr);
    }
}

/// Nothing was current on the thread before, so it still has its context when that is released.
TEST(ContextManager, ServesThreadsFromBeforeItsSetUp) {
    std::jthread([] {
        AEOpenGLContextManager::getCurrentRenderContext();
        for (int round = 0; round < 3; ++round) {
            unsigned texture = 0;
            std::jthread([&] {
                AEOpenGLContextManager::setupContextManager();
                texture = makeTexture();
            }).join();
            AEOpenGLContextManager::getCurrentRenderContext()->makeContextCurrent();
            // Before the first set-up there was nothing to share with.
            EXPECT_EQ(glIsTexture(texture), round == 0 ? GL_FALSE : GL_TRUE) << round;
            AEOpenGLContextManager::releaseContextManager();
        }
    }).join();
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
    bindFrameBuffer(false);
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

TEST(SaveRestoreWithoutAHost, KeepsAliveWhatWasCurrentAndLeavesTheRest) {
    CGLSetCurrentContext(nullptr);
    SaveRestoreGLContextMac nothing;
    auto hosts = std::make_unique<AEOpenGLContext>(nullptr);
    NSOpenGLContext* const current = NSOpenGLContext::currentContext();
    nothing.restore();
    EXPECT_EQ(NSOpenGLContext::currentContext(), current);
    SaveRestoreGLContextMac saved;
    const AEOpenGLContext plugins(nullptr);
    hosts.reset();
    saved.restore();
    EXPECT_EQ(NSOpenGLContext::currentContext(), current);
}

TEST(PerContext, KeepsAValueForEachContextUntilThatEnds) {
    PerContext<std::shared_ptr<int>> values;
    AEOpenGLContext first(nullptr);
    EXPECT_EQ(values.find(), nullptr);
    const auto firstValue = values.current() = std::make_shared<int>(1);
    const auto secondValue = std::make_shared<int>(2);
    {
        const AEOpenGLContext second(nullptr);
        EXPECT_EQ(values.current(), nullptr);
        values.current() = secondValue;
        EXPECT_EQ(secondValue.use_count(), 2);
    }
    EXPECT_EQ(secondValue.use_count(), 1) << "the value outlived its context";
    first.makeContextCurrent();
    EXPECT_EQ(values.current(), firstValue);
}

} // namespace
