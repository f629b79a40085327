#include "Tests/Support/EffectTest.h"

#include <barrier>
#include <chrono>
#include <semaphore>
#include <thread>
#include <vector>

namespace Ombrique::Tests {

namespace {

using namespace Hosts;

class Threads : public EffectTest {
protected:
    /// A frame of a size, a picture and a setting of its own.
    void renderOne(int frame) const {
        const Size sizes[] = {{7, 5}, {64, 33}, {129, 70}};
        const Correction correction{0.01 * (frame * 37 % 300), frame * 53 % 100 - 50.0};
        EXPECT_EQ(plainFrame(correction, static_cast<unsigned>(frame), sizes[frame % 3]), "") << "frame " << frame;
    }
};

/// Frames overlap, then move from one thread to the next; a thread comes and goes, and its context stays behind; then
/// the effect is set down and up, and all of them render again.
TEST_F(Threads, ShareTheEffect) {
    constexpr int kThreads = 8;
    std::barrier step(kThreads);
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < kThreads; ++thread)
        threads.emplace_back([&, thread] {
            for (int frame = 0; frame < 160; ++frame) {
                const bool inTurn = frame % 40 >= 20;
                if (!inTurn || frame % kThreads == thread)
                    renderOne(frame + 7 * thread);
                if (inTurn)
                    step.arrive_and_wait();
                if (frame % 40 == 39 && thread == 0) {
                    std::jthread([&] { renderOne(frame); }).join();
                    EXPECT_TRUE(effect.setDown().clean() && effect.setUp().clean());
                }
                if (inTurn)
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
