#include "Platform/OpenGL/CGLCurrent.h"
#include "Platform/OpenGL/NSAutoreleasePool.h"
#include "Platform/OpenGL/NSOpenGLContext.h"
#include "Platform/OpenGL/NSOpenGLPixelFormat.h"
#include "Tests/Support/HostContext.h"
#include "Tests/Support/Worker.h"

#include <gtest/gtest.h>

#include <barrier>
#include <limits>
#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

using namespace Ombrique::Tests;

namespace {

struct Release {
    void operator()(NSObject* object) const { object->release(); }
};
template <typename Object> using Owned = std::unique_ptr<Object, Release>;

using Attributes = std::vector<NSOpenGLPixelFormatAttribute>;

Owned<NSOpenGLPixelFormat> makeFormat(Attributes attributes = {NSOpenGLPFAOpenGLProfile,
                                                               NSOpenGLProfileVersion3_2Core}) {
    attributes.push_back(0);
    return Owned<NSOpenGLPixelFormat>(NSOpenGLPixelFormat::initWithAttributes(attributes.data()));
}

Owned<NSOpenGLContext> makeContext() {
    return Owned<NSOpenGLContext>(NSOpenGLContext::initWithFormat(makeFormat().get(), nullptr));
}

TEST(PixelFormat, RefusesWhatNoConfigurationHas) {
    constexpr auto huge = std::numeric_limits<NSOpenGLPixelFormatAttribute>::max();
    const struct {
        const char* name;
        Attributes attributes;
        bool served;
    } rows[] = {
        {"the profile alone", {99, 0x3200}, true},
        {"depth and stencil as arguments, not attributes", {12, 16, 13, 8, 99, 0x3200}, true},
        {"the closest colour", {74, 8, 1000, 99, 0x3200}, true},
        {"no profile", {8, 24}, false},
        {"the legacy profile", {99, 0x1000}, false},
        {"an unknown attribute", {99, 0x3200, 4711}, false},
        {"more colour than there is", {8, 1000, 99, 0x3200}, false},
        {"more depth than there is", {74, 12, 1000, 99, 0x3200}, false},
        {"more alpha than a number holds", {74, 11, huge, 99, 0x3200}, false},
    };
    for (const auto& row : rows)
        EXPECT_EQ(makeFormat(row.attributes) != nullptr, row.served) << row.name;
    EXPECT_EQ(NSOpenGLPixelFormat::initWithAttributes(nullptr), nullptr);
    EXPECT_EQ(NSOpenGLContext::initWithFormat(nullptr, nullptr), nullptr);
}

class BesideAHost : public testing::TestWithParam<EGLenum> {};
INSTANTIATE_TEST_SUITE_P(API, BesideAHost, testing::Values(EGL_OPENGL_API, EGL_OPENGL_ES_API),
                         [](const auto& api) { return apiName(api.param); });

TEST_P(BesideAHost, TheHostsContextComesBackWithItsDisplaySurfacesAndAPI) {
    const HostContext host(GetParam());
    const CGLContextObj recorded = CGLGetCurrentContext();
    EXPECT_NE(recorded, nullptr);
    EXPECT_EQ(NSOpenGLContext::currentContext(), nullptr);

    const auto context = makeContext(); // the first one, so the display is chosen beside the host's context, too
    ASSERT_TRUE(context);
    EXPECT_TRUE(host.isUntouched());
    ASSERT_TRUE(context->makeCurrentContext());
    EXPECT_EQ(CGLGetCurrentContext(), context->CGLContextObj());
    EXPECT_EQ(eglQueryAPI(), GetParam());

    EXPECT_TRUE(CGLSetCurrentContext(recorded));
    EXPECT_TRUE(host.isUntouched());
}

TEST_P(BesideAHost, WhatAHostSwitchesOnEGLIsSeen) {
    const HostContext host(GetParam());
    const auto context = makeContext();
    ASSERT_TRUE(context->makeCurrentContext());
    const EGLDisplay display = eglGetCurrentDisplay();
    host.makeCurrent();
    EXPECT_EQ(NSOpenGLContext::currentContext(), nullptr);

    const CGLContextObj object = context->CGLContextObj();
    ASSERT_TRUE(eglMakeCurrent(display, object.drawSurface, object.readSurface, object.context));
    EXPECT_EQ(NSOpenGLContext::currentContext(), context.get());
}

TEST(Context, LivesWhileAThreadHasItCurrent) {
    auto context = makeContext();
    const CGLContextObj object = context->CGLContextObj();
    Worker worker;
    worker.run([&] { EXPECT_TRUE(context->makeCurrentContext()); });
    context.reset();
    worker.run([&] {
        ASSERT_NE(NSOpenGLContext::currentContext(), nullptr);
        EXPECT_EQ(NSOpenGLContext::currentContext()->CGLContextObj(), object);
        EXPECT_EQ(CGLGetCurrentContext(), object);
        EXPECT_TRUE(CGLSetCurrentContext(nullptr));
        EXPECT_FALSE(CGLSetCurrentContext(object)) << "nobody holds it any more, and yet it lives";
        EXPECT_EQ(CGLGetCurrentContext(), nullptr);
        EXPECT_EQ(NSOpenGLContext::currentContext(), nullptr);
    });
}

TEST(Context, IsCurrentOnOneThreadUntilThatEnds) {
    const auto first = makeContext();
    const auto second = makeContext();
    ASSERT_TRUE(second->makeCurrentContext());
    {
        Worker worker;
        worker.run([&] { EXPECT_TRUE(first->makeCurrentContext()); });
        EXPECT_FALSE(first->makeCurrentContext());
        EXPECT_FALSE(CGLSetCurrentContext(first->CGLContextObj()));
        EXPECT_EQ(NSOpenGLContext::currentContext(), second.get());
        EXPECT_EQ(CGLGetCurrentContext(), second->CGLContextObj());
    }
    EXPECT_TRUE(first->makeCurrentContext());
}

TEST(Context, ManyThreadsMayBeTheFirst) {
    constexpr int kThreads = 8;
    std::barrier together(kThreads);
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (int i = 0; i < kThreads; ++i)
        threads.emplace_back([&] {
            together.arrive_and_wait();
            for (int round = 0; round < 5; ++round) {
                const auto context = makeContext();
                ASSERT_TRUE(context && context->makeCurrentContext());
                EXPECT_EQ(NSOpenGLContext::currentContext(), context.get());
            }
        });
    for (std::thread& thread : threads)
        thread.join();
}

TEST(AutoreleasePool, ReleasesAtTheEndOfItsOwnScope) {
    struct Counted : NSObject {
        explicit Counted(int& living) : mLiving(living) { ++mLiving; }
        ~Counted() override { --mLiving; }
        int& mLiving;
    };
    int living = 0;
    const NSAutoreleasePool outer;
    NSAutoreleasePool::addObject(new Counted(living));
    EXPECT_THROW(
        {
            const NSAutoreleasePool inner;
            NSAutoreleasePool::addObject(new Counted(living));
            EXPECT_EQ(living, 2);
            throw std::runtime_error("through the scope");
        },
        std::runtime_error);
    EXPECT_EQ(living, 1);
}

} // namespace
