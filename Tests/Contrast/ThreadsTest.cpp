#include "Tests/Support/EffectHarness.h"

#include <barrier>
#include <random>
#include <thread>
#include <vector>

namespace Ombrique::Tests {

namespace {

using namespace Hosts;

constexpr int kThreads = 8;
constexpr int kFrames = 200;
constexpr int kSizes[][2] = {{7, 5}, {64, 33}, {129, 70}};

/// One frame of a random size, picture and setting; the text says what is wrong with it.
std::string renderOne(const Effect& effect, unsigned seed) {
    std::mt19937 random(seed);
    const auto& size = kSizes[random() % std::size(kSizes)];
    const double contrast = 0.01 * static_cast<double>(random() % 300);
    const double brightness = static_cast<double>(random() % 100) - 50.0;
    World input = makePicture(size[0], size[1], seed);
    World output(size[0], size[1]);
    const FrameResult result =
        effect.render({.input = &input, .output = &output, .values = EffectHarness::sliders(contrast, brightness)});
    return result.clean() ? compareWithOracle(input, output, contrast, brightness) : result.describe();
}

TEST(Threads, FramesThatMoveBetweenThreads) {
    const EffectHarness harness;
    std::mt19937 random(2024);
    std::vector<int> turns;
    for (int frame = 0; frame < kFrames; ++frame)
        turns.push_back(static_cast<int>(random() % kThreads));
    std::barrier nextFrame(kThreads);
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&, thread] {
            for (int frame = 0; frame < kFrames; ++frame) {
                const bool own = turns[static_cast<std::size_t>(frame)] == thread;
                EXPECT_EQ(own ? renderOne(harness.effect, static_cast<unsigned>(frame)) : "", "") << "frame " << frame;
                nextFrame.arrive_and_wait();
            }
        });
    }
}

TEST(Threads, FramesThatOverlap) {
    const EffectHarness harness;
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&, thread] {
            for (int frame = thread; frame < kFrames; frame += kThreads)
                EXPECT_EQ(renderOne(harness.effect, static_cast<unsigned>(frame)), "") << "frame " << frame;
        });
    }
}

/// Threads end, and new ones take over, while another stays: contexts of ended threads stay behind, and disturb nobody.
TEST(Threads, ThatEndAndTakeOver) {
    const EffectHarness harness;
    for (unsigned thread = 0; thread < 24; ++thread) {
        std::jthread([&] { EXPECT_EQ(renderOne(harness.effect, thread), ""); }).join();
        EXPECT_EQ(renderOne(harness.effect, 100 + thread), "");
    }
}

/// Threads that rendered before a setdown render again after the next setup, and so do threads that come and go.
TEST(Threads, OutliveASetdown) {
    EffectHarness harness;
    std::barrier step(3);
    std::vector<std::jthread> threads;
    for (unsigned thread = 0; thread < 2; ++thread) {
        threads.emplace_back([&, thread] {
            for (unsigned round = 0; round < 3; ++round) {
                EXPECT_EQ(renderOne(harness.effect, 10 * round + thread), "");
                step.arrive_and_wait();
                step.arrive_and_wait();
            }
        });
    }
    for (unsigned round = 0; round < 3; ++round) {
        step.arrive_and_wait();
        std::jthread([&] { EXPECT_EQ(renderOne(harness.effect, round), ""); }).join();
        EXPECT_TRUE(harness.effect.setDown().clean());
        EXPECT_TRUE(harness.effect.setUp().clean());
        step.arrive_and_wait();
    }
}

} // namespace

} // namespace Ombrique::Tests
