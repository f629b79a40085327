#include "Benchmarks/BareFrame.h"
#include "Benchmarks/Cost.h"
#include "Benchmarks/FirstFrame.h"
#include "Hosts/Engine/Effect.h"
#include "Platform/OpenGL/CGLCurrent.h"
#include "Platform/OpenGL/NSOpenGLContext.h"
#include "Platform/OpenGL/NSOpenGLPixelFormat.h"
#include "Tests/Support/PixelOracle.h"

#define GL_GLEXT_PROTOTYPES
#include <GL/glcorearb.h>
#include <benchmark/benchmark.h>

#include <climits>
#include <malloc.h>
#include <map>
#include <optional>
#include <stdexcept>

// What a frame costs: the effect through its entry point, and the same OpenGL calls bare, in one run and in turn, so
// that a busy machine slows both alike. Counters are medians in milliseconds or, where they say so, microseconds;
// `ratio` is the median of the ratios of neighbours, and `ratio_cpu` the same in CPU time of all threads.
namespace Ombrique::Benchmarks {

namespace {

using Hosts::World;

constexpr double kContrast = 1.4;
constexpr double kBrightness = 5.0;

/// The effect, set up for the whole run.
struct LoadedEffect {
    LoadedEffect() {
        if (const Hosts::CommandResult result = effect.setUp(); !result.clean())
            throw std::runtime_error(result.describe());
    }
    Hosts::PluginBundle bundle{OMBRIQUE_TEST_BUNDLE};
    Hosts::Effect effect{bundle};
};

LoadedEffect& loaded() {
    static LoadedEffect effect;
    return effect;
}

/// The context of the bare calls. It lasts as long as the process.
NSOpenGLContext* bareContext() {
    static NSOpenGLContext* const context = [] {
        constexpr NSOpenGLPixelFormatAttribute attributes[] = {NSOpenGLPFAOpenGLProfile, NSOpenGLProfileVersion3_2Core,
                                                               0};
        NSOpenGLPixelFormat* const format = NSOpenGLPixelFormat::initWithAttributes(attributes);
        NSOpenGLContext* const made = NSOpenGLContext::initWithFormat(format, nullptr);
        if (!made)
            throw std::runtime_error("no OpenGL context");
        format->release();
        return made;
    }();
    return context;
}

/// The bare context is current in such a scope alone: the effect's host has none.
class BareScope {
public:
    BareScope() { bareContext()->makeCurrentContext(); }
    ~BareScope() { CGLSetCurrentContext(nullptr); }
    BareScope(const BareScope&) = delete;
    BareScope& operator=(const BareScope&) = delete;
};

/// Both ways to a frame of one size.
class Subject {
public:
    Subject(int width, int height)
        : mInput(Tests::makePicture(width, height, 1, false, {.paddingBytes = 0})), mOutput(width, height) {
        {
            const BareScope scope;
            mBare.emplace(width, height);
        }
        verify("the effect", [&] { effect(); });
        verify("the bare calls", [&] { bare(); });
    }
    ~Subject() {
        const BareScope scope;
        mBare.reset();
    }
    Subject(const Subject&) = delete;
    Subject& operator=(const Subject&) = delete;

    Cost effect() {
        const Hosts::Effect& effect = loaded().effect;
        Hosts::HostCall call({.input = &mInput, .output = &mOutput, .values = {{1, kContrast}, {2, kBrightness}}},
                             effect.environment());
        PF_PreRenderInput input{{{0, 0, mInput.width(), mInput.height()}, 0, 0xF, 0}};
        PF_PreRenderOutput output{};
        PF_PreRenderExtra preRender{&input, &output, Hosts::HostCall::preRenderCallbacks()};
        PF_SmartRenderExtra smartRender{Hosts::HostCall::smartRenderCallbacks()};
        const PF_EntryPoint entry = loaded().bundle.entryPoint();
        return measure([&] {
            entry(PF_Cmd_SMART_PRE_RENDER, call.inData(), call.outData(), nullptr, nullptr, &preRender);
            entry(PF_Cmd_SMART_RENDER, call.inData(), call.outData(), nullptr, nullptr, &smartRender);
        });
    }

    Cost bare() {
        const BareScope scope;
        return measure([&] {
            mBare->render(mInput.row(0), mOutput.row(0), mOutput.rowBytes(), static_cast<float>(kContrast),
                          static_cast<float>(kBrightness));
        });
    }

    /// The stages of the bare frame, each from an idle driver to an idle driver.
    void stages(std::map<std::string, std::vector<Cost>>& costs) {
        const auto stage = [&](const char* name, auto action) {
            costs[name].push_back(measure([&] {
                action();
                glFinish();
            }));
        };
        const BareScope scope;
        glFinish();
        stage("1_target", [&] { mBare->makeTarget(); });
        stage("2_upload", [&] { mBare->upload(mInput.row(0)); });
        stage("3_contrast",
              [&] { mBare->contrastPass(static_cast<float>(kContrast), static_cast<float>(kBrightness)); });
        stage("4_resolve", [&] { mBare->resolve(); });
        stage("5_screen", [&] { mBare->screenPass(); });
        stage("6_read", [&] { mBare->readBack(); });
        stage("7_rows", [&] { mBare->copyRows(mOutput.row(0), mOutput.rowBytes()); });
    }

private:
    template <typename Action> void verify(const char* who, Action action) {
        mOutput.fill(PF_Pixel8{1, 2, 3, 4});
        action();
        if (const std::string text = Tests::compareWithOracle(mInput, mOutput, {kContrast, kBrightness}); !text.empty())
            throw std::runtime_error(std::string(who) + ": " + text);
    }

    World mInput;
    World mOutput;
    std::optional<BareFrame> mBare;
};

int arg(const benchmark::State& state, std::size_t index) { return static_cast<int>(state.range(index)); }

void frame(benchmark::State& state) {
    Subject subject(arg(state, 0), arg(state, 1));
    std::vector<Cost> effect;
    std::vector<Cost> bare;
    for ([[maybe_unused]] auto iteration : state) {
        if (effect.size() % 2 == 0) { // neither always comes first
            effect.push_back(subject.effect());
            bare.push_back(subject.bare());
        } else {
            bare.push_back(subject.bare());
            effect.push_back(subject.effect());
        }
        state.SetIterationTime(effect.back().wall / 1e3);
    }
    state.counters["effect"] = medianOf(effect, &Cost::wall);
    state.counters["bare"] = medianOf(bare, &Cost::wall);
    state.counters["ratio"] = medianRatio(effect, bare, &Cost::wall);
    state.counters["ratio_cpu"] = medianRatio(effect, bare, &Cost::cpu);
}

void stages(benchmark::State& state) {
    Subject subject(arg(state, 0), arg(state, 1));
    std::map<std::string, std::vector<Cost>> costs;
    for ([[maybe_unused]] auto iteration : state) {
        const Cost whole = measure([&] { subject.stages(costs); });
        state.SetIterationTime(whole.wall / 1e3);
    }
    for (const auto& [name, times] : costs)
        state.counters[name] = medianOf(times, &Cost::wall);
}

/// How the time of a frame grows from 1920 by 1080 to four times as many pixels.
void growth(benchmark::State& state) {
    Subject small(1920, 1080);
    Subject large(3840, 2160);
    std::vector<Cost> smallCosts;
    std::vector<Cost> largeCosts;
    const auto second = [](Subject& subject) {
        subject.effect(); // rebuilds the targets for its size
        return subject.effect();
    };
    for ([[maybe_unused]] auto iteration : state) {
        smallCosts.push_back(second(small));
        largeCosts.push_back(second(large));
        state.SetIterationTime(largeCosts.back().wall / 1e3);
    }
    state.counters["ratio"] = medianRatio(largeCosts, smallCosts, &Cost::wall);
    state.counters["ratio_cpu"] = medianRatio(largeCosts, smallCosts, &Cost::cpu);
}

/// All that isn't OpenGL's work, at a size where that is little: the effect less the bare calls, in microseconds. The
/// effect's time has the host's answers in it.
void overhead(benchmark::State& state) {
    constexpr int kBatch = 50;
    constexpr double kMicroseconds = 1e3;
    Subject subject(16, 16);
    std::vector<double> wall;
    std::vector<double> cpu;
    for ([[maybe_unused]] auto iteration : state) {
        // Batches, so that neither always finds the other's context current.
        std::vector<Cost> effect;
        std::vector<Cost> bare;
        for (int i = 0; i < kBatch; ++i)
            effect.push_back(subject.effect());
        for (int i = 0; i < kBatch; ++i)
            bare.push_back(subject.bare());
        wall.push_back((medianOf(effect, &Cost::wall) - medianOf(bare, &Cost::wall)) * kMicroseconds);
        cpu.push_back((medianOf(effect, &Cost::cpu) - medianOf(bare, &Cost::cpu)) * kMicroseconds);
        state.SetIterationTime(medianOf(effect, &Cost::wall) / 1e3);
    }
    state.counters["wall_us"] = median(wall);
    state.counters["cpu_us"] = median(cpu);
}

void sizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->ArgNames({"width", "height"})->Args({1280, 720})->Args({1920, 1080})->Args({3840, 2160});
    benchmark->Args({1001, 667})->UseManualTime()->Unit(benchmark::kMillisecond);
}

BENCHMARK(firstFrame)
    ->ArgNames({"width", "height"})
    ->Args({16, 16})
    ->Args({1920, 1080})
    ->UseManualTime()
    ->Iterations(15)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(frame)->Apply(sizes)->MinTime(3);
BENCHMARK(growth)->UseManualTime()->MinTime(3)->Unit(benchmark::kMillisecond);
BENCHMARK(stages)->Apply(sizes)->MinTime(1);
BENCHMARK(overhead)->UseManualTime()->Iterations(40)->Unit(benchmark::kMicrosecond);

} // namespace

} // namespace Ombrique::Benchmarks

int main(int argc, char** argv) {
    // Blocks above glibc's thresholds are mapped and cleared anew for every frame, which costs more than the frame.
    mallopt(M_MMAP_THRESHOLD, 1 << 30);
    mallopt(M_TRIM_THRESHOLD, INT_MAX);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
