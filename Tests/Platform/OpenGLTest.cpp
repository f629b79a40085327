#include "Platform/OpenGL/CGLCurrent.h"
#include "Platform/OpenGL/DriverLimits.h"
#include "Platform/OpenGL/NSOpenGLContext.h"
#include "Platform/OpenGL/NSOpenGLPixelFormat.h"
#include "Tests/Support/HostContext.h"

#include <gtest/gtest.h>

#include <latch>
#include <limits>
#include <memory>
#include <thread>
#include <vector>

using namespace Ombrique::Tests;

namespace {

struct Release {
    void operator()(NSObject* object) const { object->release(); }
};
template <typename Object> using Owned = std::unique_ptr<Object, Release>;

using Attributes = std::vector<NSOpenGLPixelFormatAttribute>;

Owned<NSOpenGLPixelFormat> makeFormat(Attributes attributes) {
    attributes.push_back(0);
    return Owned<NSOpenGLPixelFormat>(NSOpenGLPixelFormat::initWithAttributes(attributes.data()));
}

Owned<NSOpenGLContext> makeContext() {
    return Owned<NSOpenGLContext>(NSOpenGLContext::initWithFormat(makeFormat({99, 0x3200}).get(), nullptr));
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
        {"more stencil than there is", {74, 13, 1000, 99, 0x3200}, false},
        {"more alpha than there is", {74, 11, 1000, 99, 0x3200}, false},
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

TEST_P(BesideAHost, WhatEachMakesCurrentIsSeenAndTheHostsComesBack) {
    const HostContext host(GetParam());
    EXPECT_GT(longestRenderableSide(), 0); // the first question, so the display is chosen beside the host's context
    const auto context = makeContext();
    EXPECT_TRUE(host.isUntouched());
    const CGLContextObj recorded = CGLGetCurrentContext();
    EXPECT_NE(recorded, nullptr);
    EXPECT_EQ(NSOpenGLContext::currentContext(), nullptr);

    ASSERT_TRUE(context && context->makeCurrentContext());
    const CGLContextObj object = context->CGLContextObj();
    EXPECT_EQ(CGLGetCurrentContext(), object);
    EXPECT_EQ(eglQueryAPI(), GetParam());
    const EGLDisplay display = eglGetCurrentDisplay();
    host.makeCurrent(); // by EGL alone, as is the next
    EXPECT_EQ(NSOpenGLContext::currentContext(), nullptr);
    ASSERT_TRUE(eglMakeCurrent(display, object.drawSurface, object.readSurface, object.context));
    EXPECT_EQ(NSOpenGLContext::currentContext(), context.get());

    EXPECT_TRUE(CGLSetCurrentContext(recorded));
    EXPECT_TRUE(host.isUntouched());
}

TEST(Context, LivesWhileAThreadHasItCurrent) {
    auto context = makeContext();
    const CGLContextObj object = context->CGLContextObj();
    ASSERT_TRUE(context->makeCurrentContext());
    context.reset();
    ASSERT_NE(NSOpenGLContext::currentContext(), nullptr);
    EXPECT_EQ(NSOpenGLContext::currentContext()->CGLContextObj(), object);
    EXPECT_EQ(CGLGetCurrentContext(), object);
    EXPECT_TRUE(CGLSetCurrentContext(nullptr));
    EXPECT_FALSE(CGLSetCurrentContext(object)) << "nobody holds it any more, and yet it lives";
    EXPECT_EQ(CGLGetCurrentContext(), nullptr);
    EXPECT_EQ(NSOpenGLContext::currentContext(), nullptr);
}

TEST(Context, IsCurrentOnOneThreadUntilThatEnds) {
    const auto first = makeContext();
    const auto second = makeContext();
    ASSERT_TRUE(second->makeCurrentContext());
    std::latch isCurrent(1);
    std::latch isRefused(1);
    std::thread other([&] {
        EXPECT_TRUE(first->makeCurrentContext());
        isCurrent.count_down();
        isRefused.wait();
    });
    isCurrent.wait();
    EXPECT_FALSE(first->makeCurrentContext());
    EXPECT_FALSE(CGLSetCurrentContext(first->CGLContextObj()));
    EXPECT_EQ(NSOpenGLContext::currentContext(), second.get());
    EXPECT_EQ(CGLGetCurrentContext(), second->CGLContextObj());
    isRefused.count_down();
    other.join();
    EXPECT_TRUE(first->makeCurrentContext());
}

} // namespace
