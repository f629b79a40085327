#include "Tests/Support/EffectHarness.h"
#include "Tests/Support/FailingNew.h"
#include "Tests/Support/HostContext.h"
#include "Tests/Support/OpenGLObjects.h"

#include <iostream>
#include <thread>

namespace Ombrique::Tests {

namespace {

using namespace Hosts;

/// Runs `attempt(n)` for n = 1, 2, ... until it returns false, which says that the command has no n-th allocation.
template <typename Attempt> void sweep(const char* command, Attempt attempt) {
    int n = 1;
    while (attempt(n)) {
        if (testing::Test::HasFailure())
            FAIL() << "allocation " << n << " of " << command;
        ++n;
    }
    std::cout << n - 1 << " failing allocations tried in " << command << "\n";
}

void expectOutOfMemory(const CommandResult& result, const FailingNew& failing) {
    EXPECT_EQ(result.error, failing.fired() ? PF_Err_OUT_OF_MEMORY : PF_Err_NONE);
    EXPECT_TRUE(result.findings.empty()) << result.describe();
}

class AllocationFaults : public testing::Test {
protected:
    /// A frame whose n-th allocation fails; false where it has none.
    bool renderFailing(int n) {
        World output(7, 5);
        const FailingNew failing(n);
        expectOutOfMemory(harness.effect.render({.input = &picture, .output = &output}), failing);
        return failing.fired();
    }

    EffectHarness harness;
    World picture = makePicture(7, 5, 3);
};

TEST_F(AllocationFaults, OfAFrame) {
    letGoOfContext(); // so that the effect's own stays current, and its objects can be counted
    harness.expectRight(picture, 1.5, 2.0);
    const auto objects = countOpenGLObjects();
    sweep("a frame", [&](int n) {
        const bool fired = renderFailing(n);
        EXPECT_EQ(countOpenGLObjects(), objects);
        harness.expectRight(picture, 1.5, 2.0);
        return fired;
    });
}

/// The first frame after a set-up makes the thread's context, the passes' programs and the targets.
TEST_F(AllocationFaults, OfAFirstFrameOnANewThread) {
    sweep("a first frame", [&](int n) {
        EXPECT_TRUE(harness.effect.setDown().clean());
        EXPECT_TRUE(harness.effect.setUp().clean());
        bool fired = false;
        std::jthread([&] {
            const HostContext host(EGL_OPENGL_API);
            fired = renderFailing(n);
            EXPECT_TRUE(host.isUntouched());
            harness.expectRight(picture, 0.7, 1.0);
        }).join();
        return fired;
    });
}

TEST_F(AllocationFaults, OfAFrameOfANewSize) {
    World large = makePicture(31, 19, 4);
    sweep("a frame of another size", [&](int n) {
        harness.expectRight(large, 1.1, 0.0);
        return renderFailing(n);
    });
}

TEST_F(AllocationFaults, OfSetUpAndSetDown) {
    const HostContext host(EGL_OPENGL_API);
    const auto isRightAgain = [&] {
        EXPECT_TRUE(host.isUntouched());
        EXPECT_TRUE(harness.effect.isSetUp() || harness.effect.setUp().clean());
        harness.expectRight(picture, 0.8, 1.0);
    };
    const auto attempt = [](int n, auto command) {
        const FailingNew failing(n);
        expectOutOfMemory(command(), failing);
        return failing.fired();
    };
    sweep("set-up", [&](int n) {
        EXPECT_TRUE(harness.effect.setDown().clean());
        const bool fired = attempt(n, [&] { return harness.effect.setUp(); });
        isRightAgain();
        return fired;
    });
    sweep("set-down", [&](int n) {
        const bool fired = attempt(n, [&] { return harness.effect.setDown(); });
        isRightAgain();
        return fired;
    });
}

} // namespace

} // namespace Ombrique::Tests
