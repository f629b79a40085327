#include "Tests/Support/EffectTest.h"

#include <barrier>
#include <chrono>
#include <random>
#include <semaphore>
#include <thread>
#include <vector>

namespace Ombrique::Tests {

namespace {

using namespace Hosts;

class Threads : public EffectTest {
protected:
    static constexpr int kThreads = 8;
    static constexpr int kFrames = 200;

    /// A frame of a size, a picture and a setting of its own.
    void renderOne(int frame) const {
        std::mt19937 random(static_cast<unsigned>(frame));
        const Size sizes[] = {{7, 5}, {64, 33}, {129, 70}};
        const Size size = sizes[random() % std::size(sizes)];
        const double contrast = 0.01 * static_cast<double>(random() % 300);
        const double brightness = static_cast<double>(random() % 100) - 50.0;
        EXPECT_EQ(plainFrame({contrast, brightness}, static_cast<unsigned>(frame), size), "") << "frame " << frame;
    }

    /// Runs `body(thread)` on `count` threads at the same time.
    template <typename Body> static void onThreads(int count, Body body) {
        std::vector<std::jthread> threads;
        for (int thread = 0; thread < count; ++thread)
            threads.emplace_back(body, thread);
    }
};

TEST_F(Threads, FramesThatMoveBetweenThreads) {
    std::barrier nextFrame(kThreads);
    onThreads(kThreads, [&](int thread) {
        std::mt19937 random(2024);
        for (int frame = 0; frame < kFrames; ++frame) {
            if (static_cast<int>(random() % kThreads) == thread)
                renderOne(frame);
            nextFrame.arrive_and_wait();
        }
    });
}

TEST_F(Threads, FramesThatOverlap) {
    onThreads(kThreads, [&](int thread) {
        for (int frame = thread; frame < kFrames; frame += kThreads)
            renderOne(frame);
    });
}

/// Threads end, and new ones take over, while another stays: contexts of ended threads stay behind, and disturb nobody.
TEST_F(Threads, ThatEndAndTakeOver) {
    for (int thread = 0; thread < 24; ++thread) {
        std::jthread([&] { renderOne(thread); }).join();
        renderOne(100 + thread);
    }
}

/// Threads that rendered before a setdown render again after the next setup, and so do threads that come and go.
TEST_F(Threads, OutliveASetdown) {
    std::barrier step(3);
    onThreads(3, [&](int thread) {
        for (int round = 0; round < 3; ++round) {
            renderOne(10 * round + thread);
            step.arrive_and_wait();
            if (thread == 0) {
                std::jthread([&] { renderOne(round); }).join();
                EXPECT_TRUE(effect.setDown().clean());
                EXPECT_TRUE(effect.setUp().clean());
            }
            step.arrive_and_wait();
        }
    });
}

std::binary_semaphore checkedOut{0};

PF_Err noPixels(PF_ProgPtr, std::int32_t, PF_LayerDef**) {
    checkedOut.release();
    return 83;
}

TEST_F(Threads, AFrameChecksOutItsInputWhileAnotherIsUnderWay) {
    World input = makePicture(6, 4, 9);
    World output(6, 4);
    std::jthread other;
    const auto contrast = [&](const FrameTime&) {
        other = std::jthread([&] {
            const PF_SmartRenderCallbacks callbacks{noPixels, nullptr};
            PF_SmartRenderExtra extra{&callbacks};
            HostCall call;
            EXPECT_EQ(call.send(bundle.entryPoint(), PF_Cmd_SMART_RENDER, &extra).error, 83);
        });
        EXPECT_TRUE(checkedOut.try_acquire_for(std::chrono::seconds(5)));
        return 1.0;
    };
    EXPECT_TRUE(effect.render({.input = &input, .output = &output, .values = {{1, contrast}}}).clean());
}

} // namespace

} // namespace Ombrique::Tests
