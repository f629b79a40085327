#include "Platform/OpenGL/CGLCurrent.h"
#include "Platform/OpenGL/NSOpenGLContext.h"
#include "Plugins/Shared/GL/AEOpenGLContext.h"
#include "Plugins/Shared/GL/AEOpenGLContextManager.h"
#include "Plugins/Shared/GL/PerContext.h"
#include "Plugins/Shared/GL/SaveRestoreGLContextMac.h"
#include "Tests/Support/HostContext.h"
#include "Tests/Support/Worker.h"

#include <glbinding/Meta.h>
#include <glbinding/gl/gl.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

using namespace Ombrique::GaussianBlur;
using namespace Ombrique::Tests;

namespace {

/// Keeps what is written to standard output for as long as it lives.
class CapturedOutput {
public:
    CapturedOutput() : mPrevious(std::cout.rdbuf(mText.rdbuf())) {}
    CapturedOutput(const CapturedOutput&) = delete;
    CapturedOutput& operator=(const CapturedOutput&) = delete;
    ~CapturedOutput() { std::cout.rdbuf(mPrevious); }

    std::string text() const { return mText.str(); }
    long lines() const { return std::ranges::count(text(), '\n'); }

private:
    std::ostringstream mText;
    std::streambuf* mPrevious;
};

std::string driverString(gl::GLenum name) { return reinterpret_cast<const char*>(gl::glGetString(name)); }

/// A texture of one pixel, made in the current context, complete for all that share with it.
unsigned makeTexture(std::array<unsigned char, 4> pixel) {
    unsigned texture = 0;
    gl::glGenTextures(1, &texture);
    gl::glBindTexture(gl::GL_TEXTURE_2D, texture);
    gl::glTexImage2D(gl::GL_TEXTURE_2D, 0, gl::GL_RGBA8, 1, 1, 0, gl::GL_RGBA, gl::GL_UNSIGNED_BYTE, pixel.data());
    gl::glBindTexture(gl::GL_TEXTURE_2D, 0);
    gl::glFinish();
    return texture;
}

std::array<unsigned char, 4> readTexture(unsigned texture) {
    std::array<unsigned char, 4> pixel = {};
    gl::glBindTexture(gl::GL_TEXTURE_2D, texture);
    gl::glGetTexImage(gl::GL_TEXTURE_2D, 0, gl::GL_RGBA, gl::GL_UNSIGNED_BYTE, pixel.data());
    gl::glBindTexture(gl::GL_TEXTURE_2D, 0);
    return pixel;
}

constexpr std::array<unsigned char, 4> kPixel = {11, 22, 33, 44};

TEST(AEOpenGLContext, WritesItsIdentityInSixLines) {
    const CapturedOutput output;
    const AEOpenGLContext context(nullptr);
    const auto integer = [](gl::GLenum name) {
        int value = 0;
        gl::glGetIntegerv(name, &value);
        return std::to_string(value);
    };
    EXPECT_EQ(output.text(), "\nOpenGL Version:  " + integer(gl::GL_MAJOR_VERSION) + "." +
                                 integer(gl::GL_MINOR_VERSION) + "\nOpenGL Vendor:   " + driverString(gl::GL_VENDOR) +
                                 "\nOpenGL Renderer: " + driverString(gl::GL_RENDERER) + "\nOpenGL Revision: " +
                                 std::to_string(glbinding::Meta::glRevision()) + " (gl.xml)\n\n");
}

TEST(AEOpenGLContext, SharesTexturesWithItsGroupAlone) {
    const AEOpenGLContext root(nullptr);
    const unsigned texture = makeTexture(kPixel);
    const AEOpenGLContext sharing(&root);
    EXPECT_EQ(readTexture(texture), kPixel);
    const AEOpenGLContext alone(nullptr);
    EXPECT_EQ(gl::glIsTexture(texture), gl::GL_FALSE);
}

TEST(AEOpenGLContext, IsCurrentOnceMadeAndWheneverAsked) {
    AEOpenGLContext first(nullptr);
    const CGLContextObj firstObject = CGLGetCurrentContext();
    ASSERT_NE(firstObject, nullptr);
    // Its frame buffer is incomplete when the next takes over, and still so when it comes back.
    unsigned frameBuffer = 0;
    gl::glGenFramebuffers(1, &frameBuffer);
    gl::glBindFramebuffer(gl::GL_FRAMEBUFFER, frameBuffer);
    AEOpenGLContext second(nullptr);
    EXPECT_NE(CGLGetCurrentContext(), firstObject);
    first.makeContextCurrent();
    EXPECT_EQ(CGLGetCurrentContext(), firstObject);
    int bound = 0;
    gl::glGetIntegerv(gl::GL_FRAMEBUFFER_BINDING, &bound);
    EXPECT_EQ(static_cast<unsigned>(bound), frameBuffer);
    EXPECT_EQ(gl::glGetError(), gl::GL_NO_ERROR);
}

TEST(AEOpenGLContextDeathTest, IsInvalidAndSilentWhereThereIsNoDriver) {
    testing::FLAGS_gtest_death_test_style = "threadsafe"; // a process of its own, which has not asked EGL yet
    EXPECT_EXIT(
        {
            setenv("__EGL_VENDOR_LIBRARY_FILENAMES", "/nowhere.json", 1);
            const CapturedOutput output;
            AEOpenGLContext context(nullptr);
            const AEOpenGLContext sharing(&context);
            context.makeContextCurrent();
            std::exit(!context.isValid() && !sharing.isValid() && output.text().empty() ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

class ContextManager : public testing::Test {
protected:
    ~ContextManager() override { AEOpenGLContextManager::releaseContextManager(); }

    /// The worker's context, made current on it.
    static AEOpenGLContext* renderContext(Worker& worker) {
        AEOpenGLContext* context = nullptr;
        worker.run([&] {
            context = AEOpenGLContextManager::getCurrentRenderContext();
            context->makeContextCurrent();
        });
        return context;
    }
};

TEST_F(ContextManager, GivesEachThreadOneContextThatOutlivesIt) {
    AEOpenGLContextManager::setupContextManager();
    const CapturedOutput output;
    Worker first;
    auto second = std::make_unique<Worker>();
    AEOpenGLContext* const firstContext = renderContext(first);
    AEOpenGLContext* const secondContext = renderContext(*second);
    EXPECT_NE(firstContext, secondContext);
    EXPECT_EQ(renderContext(first), firstContext);
    EXPECT_EQ(output.lines(), 2 * 6) << "contexts made";

    second = std::make_unique<Worker>();
    AEOpenGLContext* const thirdContext = renderContext(*second);
    EXPECT_NE(thirdContext, firstContext);
    EXPECT_NE(thirdContext, secondContext) << "of a thread that has ended";
    // The ended thread let go of its context, or nobody could make it current.
    secondContext->makeContextCurrent();
    EXPECT_TRUE(secondContext->isValid());
    EXPECT_NE(NSOpenGLContext::currentContext(), nullptr);
    EXPECT_EQ(gl::glGetError(), gl::GL_NO_ERROR);
}

TEST_F(ContextManager, RenderContextsShareWithTheSharedDataContext) {
    Worker early;
    renderContext(early); // before set-up there is nothing to share with
    AEOpenGLContextManager::setupContextManager();
    const unsigned texture = makeTexture(kPixel);
    early.run([&] { EXPECT_EQ(gl::glIsTexture(texture), gl::GL_FALSE); });
    Worker first;
    Worker second;
    for (Worker* worker : {&first, &second}) {
        renderContext(*worker);
        worker->run([&] { EXPECT_EQ(readTexture(texture), kPixel); });
    }
}

// Nothing was current on the workers before, so they still have the contexts of the first round when these are released
// and when the second round begins.
TEST_F(ContextManager, SetUpAgainServesThreadsThatRenderedBefore) {
    Worker workers[2];
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(AEOpenGLContextManager::getSharedDataContext(), nullptr);
        AEOpenGLContextManager::setupContextManager();
        ASSERT_TRUE(AEOpenGLContextManager::getSharedDataContext()->isValid());
        const unsigned texture = makeTexture(kPixel);
        for (Worker& worker : workers) {
            renderContext(worker);
            worker.run([&] { EXPECT_EQ(readTexture(texture), kPixel) << "round " << round; });
        }
        AEOpenGLContextManager::releaseContextManager();
    }
    AEOpenGLContextManager::releaseContextManager(); // with nothing left
    EXPECT_EQ(AEOpenGLContextManager::getSharedDataContext(), nullptr);
}

TEST_F(ContextManager, ThreadsMayComeAtTheSameTime) {
    AEOpenGLContextManager::setupContextManager();
    constexpr std::size_t kThreads = 8;
    std::array<AEOpenGLContext*, kThreads> contexts = {};
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (AEOpenGLContext*& context : contexts)
        threads.emplace_back([&context] {
            context = AEOpenGLContextManager::getCurrentRenderContext();
            for (int frame = 0; frame < 20; ++frame) {
                ASSERT_EQ(AEOpenGLContextManager::getCurrentRenderContext(), context);
                context->makeContextCurrent();
                EXPECT_EQ(readTexture(makeTexture(kPixel)), kPixel);
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    std::ranges::sort(contexts);
    EXPECT_EQ(std::ranges::adjacent_find(contexts), contexts.end());
}

class SaveRestore : public testing::TestWithParam<EGLenum> {};
INSTANTIATE_TEST_SUITE_P(API, SaveRestore, testing::Values(EGL_OPENGL_API, EGL_OPENGL_ES_API),
                         [](const auto& api) { return apiName(api.param); });

TEST_P(SaveRestore, PutsTheHostsContextBackOnce) {
    const HostContext host(GetParam());
    SaveRestoreGLContextMac saved;
    AEOpenGLContext context(nullptr);
    unsigned frameBuffer = 0;
    gl::glGenFramebuffers(1, &frameBuffer);
    gl::glBindFramebuffer(gl::GL_FRAMEBUFFER, frameBuffer); // incomplete
    EXPECT_FALSE(host.isUntouched());
    saved.restore();
    EXPECT_TRUE(host.isUntouched());

    context.makeContextCurrent();
    saved.restore();
    EXPECT_FALSE(host.isUntouched()) << "restored a second time";
}

TEST_P(SaveRestore, LeavesAHostThatIsStillCurrentAlone) {
    const HostContext host(GetParam());
    SaveRestoreGLContextMac saved;
    saved.restore(); // without the binding: any call of OpenGL here would end the program
    EXPECT_TRUE(host.isUntouched());
}

TEST(SaveRestoreWithoutAHost, KeepsThePlatformsContextAliveUntilItIsBack) {
    auto hosts = std::make_unique<AEOpenGLContext>(nullptr);
    NSOpenGLContext* const current = NSOpenGLContext::currentContext();
    SaveRestoreGLContextMac saved;
    const AEOpenGLContext context(nullptr);
    hosts.reset();
    saved.restore();
    EXPECT_EQ(NSOpenGLContext::currentContext(), current);
}

TEST(SaveRestoreWithoutAHost, LeavesThePluginsContextWhereNothingWasCurrent) {
    CGLSetCurrentContext(nullptr);
    CGLContextObj made;
    std::unique_ptr<AEOpenGLContext> context;
    {
        SaveRestoreGLContextMac saved;
        context = std::make_unique<AEOpenGLContext>(nullptr);
        made = CGLGetCurrentContext();
        saved.restore();
        EXPECT_EQ(CGLGetCurrentContext(), made);
    }
    EXPECT_EQ(CGLGetCurrentContext(), made);
}

TEST(PerContext, KeepsAValueForEachContextUntilThatEnds) {
    struct Value {
        int number;
        std::shared_ptr<int> witness;
    };
    PerContext<Value> values;
    AEOpenGLContext first(nullptr);
    Value& firstValue = values.current();
    EXPECT_EQ(firstValue.number, 0);
    firstValue.number = 1;

    auto second = std::make_unique<AEOpenGLContext>(nullptr);
    const auto witness = std::make_shared<int>();
    EXPECT_EQ(values.current().number, 0);
    values.current() = {2, witness};
    first.makeContextCurrent();
    EXPECT_EQ(&values.current(), &firstValue);

    second.reset();
    EXPECT_EQ(witness.use_count(), 1) << "the value outlived its context";
    EXPECT_EQ(values.current().number, 1);
}

TEST(PerContext, ANewContextUnderAnOldHandleStartsAfresh) {
    PerContext<int> values;
    CGLContextObj handle;
    for (int round = 0; round < 8; ++round) {
        const AEOpenGLContext context(nullptr);
        EXPECT_EQ(values.current(), 0) << (CGLGetCurrentContext() == handle ? "the handle of" : "beside")
                                       << " the context before";
        values.current() = 1 + round;
        handle = CGLGetCurrentContext();
        CGLSetCurrentContext(nullptr);
    }
}

} // namespace
