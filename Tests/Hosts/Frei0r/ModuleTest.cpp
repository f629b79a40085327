#include "Tests/Hosts/Frei0r/RawFrames.h"
#include "Tests/Support/HostContext.h"

#include <gtest/gtest.h>

#include <array>
#include <barrier>
#include <cmath>
#include <dlfcn.h>
#include <filesystem>
#include <iostream>
#include <limits>
#include <memory>
#include <thread>
#include <unistd.h>

extern "C" {
#include <frei0r.h>
}

namespace Ombrique::Tests {

namespace {

/// The module as a tool loads it.
struct Module {
    explicit Module(const char* file = OMBRIQUE_TEST_MODULE) : library(dlopen(file, RTLD_NOW | RTLD_LOCAL)) {
        EXPECT_EQ(find(f0r_init, "f0r_init")(), 1);
    }
    ~Module() {
        deinit();
        dlclose(library);
    }
    template <typename Function> Function* find(Function&, const char* name) const {
        return reinterpret_cast<Function*>(dlsym(library, name));
    }
    void deinit() const { find(f0r_deinit, "f0r_deinit")(); }

    void* library;
};
#define CALL(module, function) (module).find(function, #function)

const std::uint32_t* pixels(const std::string& raw) { return reinterpret_cast<const std::uint32_t*>(raw.data()); }
std::uint32_t* pixels(std::string& raw) { return reinterpret_cast<std::uint32_t*>(raw.data()); }

/// An instance with both parameters set.
class Instance {
public:
    Instance(const Module& module, int width, int height, const Correction& correction)
        : mModule(module), mWidth(width), mHeight(height),
          mInstance(CALL(module, f0r_construct)(static_cast<unsigned>(width), static_cast<unsigned>(height))) {
        EXPECT_NE(mInstance, nullptr);
        set(correction);
    }
    ~Instance() { CALL(mModule, f0r_destruct)(mInstance); }
    Instance(const Instance&) = delete;
    Instance& operator=(const Instance&) = delete;

    void set(const Correction& correction) const {
        setPosition(0, correction.contrast / 10);
        setPosition(1, (correction.brightness + 100) / 200);
    }
    void setPosition(int index, double position) const {
        CALL(mModule, f0r_set_param_value)(mInstance, &position, index);
    }
    double position(int index) const {
        double position = -1;
        CALL(mModule, f0r_get_param_value)(mInstance, &position, index);
        return position;
    }
    void update(const std::uint32_t* input, std::uint32_t* output, double seconds = 1.5) const {
        CALL(mModule, f0r_update)(mInstance, seconds, input, output);
    }

    /// Renders one picture and compares it with the oracle.
    void expectRight(unsigned seed, const Correction& correction) const {
        const Hosts::World picture = makePicture(mWidth, mHeight, seed);
        const std::string input = rawFrame(picture);
        std::string output(input.size(), 'x');
        update(pixels(input), pixels(output));
        EXPECT_EQ(compareWithOracle(picture, pictureOf(output, 0, mWidth, mHeight), correction), "")
            << mWidth << " by " << mHeight << ", contrast " << correction.contrast;
    }

private:
    const Module& mModule;
    int mWidth;
    int mHeight;
    f0r_instance_t mInstance;
};

/// Tools ask all modules of a folder, so that must not cost a context.
TEST(Frei0rModule, IntroducesTheEffectWithoutOpenGL) {
    testing::internal::CaptureStderr();
    const Module module;
    f0r_plugin_info_t info{};
    CALL(module, f0r_get_plugin_info)(&info);
    EXPECT_STREQ(info.name, "Ombrique Contrast");
    EXPECT_STREQ(info.author, "Ombrique");
    EXPECT_NE(std::string(info.explanation), "");
    EXPECT_EQ(info.plugin_type, F0R_PLUGIN_TYPE_FILTER);
    EXPECT_EQ(info.color_model, F0R_COLOR_MODEL_RGBA8888);
    EXPECT_EQ(info.major_version * 10 + info.minor_version, 10);
    int index = 0;
    for (const char* const name : {"Contrast Value", "Brightness Value"}) {
        f0r_param_info_t parameter{};
        ASSERT_LT(index, info.num_params);
        CALL(module, f0r_get_param_info)(&parameter, index++);
        EXPECT_STREQ(parameter.name, name);
        EXPECT_EQ(parameter.type, F0R_PARAM_DOUBLE);
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "") << "a context tells of itself";
}

TEST(Frei0rModule, ParametersMapOntoTheDeclaredRangesAndHoldFromTheNextFrame) {
    const Module module;
    const Instance instance(module, 13, 7, {1.4, 12.0});
    const Instance other(module, 13, 7, {0.5, 3.0});
    EXPECT_DOUBLE_EQ(instance.position(0), 0.14);
    EXPECT_DOUBLE_EQ(instance.position(1), 0.56);
    instance.expectRight(1, {1.4, 12.0});
    instance.setPosition(0, -0.5); // beyond the ends
    instance.expectRight(2, {0.0, 12.0});
    instance.set({10.0, 0.0});
    instance.setPosition(1, 1.4);
    instance.expectRight(2, {10.0, 100.0});
    instance.set({2.5, -30.0});
    instance.setPosition(0, std::numeric_limits<double>::quiet_NaN()); // ignored, as are the next two
    instance.setPosition(1000, 0.5);
    instance.setPosition(-1, 0.5);
    instance.expectRight(3, {2.5, -30.0});
    other.expectRight(4, {0.5, 3.0});
}

TEST(Frei0rModule, DefaultsChangeNothing) {
    const Module module;
    const f0r_instance_t instance = CALL(module, f0r_construct)(31, 9);
    const std::string input = rawFrame(makePicture(31, 9, 77, true));
    std::string output(input.size(), 'x');
    CALL(module, f0r_update2)(instance, 0.0, pixels(input), nullptr, nullptr, pixels(output));
    EXPECT_EQ(input, output);
    CALL(module, f0r_destruct)(instance);
}

TEST(Frei0rModule, AnySizeThatTheDriverHoldsAlsoInPlaceAndUnaligned) {
    const Module module;
    for (const auto& [width, height] : {std::pair{0U, 5U}, {5U, 0U}, {1U << 20, 4U}, {4U, 0xffffffffU}})
        EXPECT_EQ(CALL(module, f0r_construct)(width, height), nullptr) << width << " by " << height;
    for (const auto& [width, height] : {std::pair{1, 1}, {7, 5}, {3, 129}, {333, 217}})
        Instance(module, width, height, {1.7, -8.0}).expectRight(5, {1.7, -8.0});
    const Hosts::World picture = makePicture(7, 5, 6);
    std::string both = rawFrame(picture);
    both.insert(0, 4, 'x'); // tools hand out frames at any pixel
    Instance(module, 7, 5, {0.6, 20.0}).update(pixels(both) + 1, pixels(both) + 1);
    EXPECT_EQ(compareWithOracle(picture, pictureOf(both, 4, 7, 5), {0.6, 20.0}), "");
}

/// The plug-in of the tests' own adds its slider's value, and 100 a second, to each colour. A copy of the module is one
/// that hasn't chosen its bundle yet.
TEST(Frei0rModule, TakesTheTimeForSeconds) {
    const std::string copy = testing::TempDir() + "frei0r-" + std::to_string(getpid()) + ".so";
    std::filesystem::copy_file(OMBRIQUE_TEST_MODULE, copy);
    setenv("OMBRIQUE_PLUGIN_PATH", OMBRIQUE_TEST_BUNDLE_OF_TESTS, 1);
    const Module module(copy.c_str());
    unsetenv("OMBRIQUE_PLUGIN_PATH");
    std::filesystem::remove(copy);
    const Instance instance(module, 1, 1, {});
    instance.setPosition(0, 0.05);
    for (const auto& [seconds, red] : {std::pair{0.0, 6}, {1.5, 156}, {2.04, 210}, {NAN, 6}}) {
        std::string pixel{1, 2, 3, 4};
        instance.update(pixels(pixel), pixels(pixel), seconds);
        EXPECT_EQ(static_cast<unsigned char>(pixel[0]), red) << "at " << seconds;
    }
}

/// Tools call from any thread, make and destroy instances on different ones, open the module more than once, and send
/// the slices of a frame through one instance at once; their own OpenGL contexts stay current meanwhile.
TEST(Frei0rModule, ThreadsWithContextsOfTheTool) {
    constexpr int kThreads = 4;
    const Module outer;
    const Instance shared(outer, 53, 17, {1.3, 4.0});
    std::array<std::unique_ptr<Instance>, kThreads> handed;
    std::barrier step(kThreads);
    std::vector<std::jthread> threads;
    for (unsigned thread = 0; thread < kThreads; ++thread)
        threads.emplace_back([&, thread] {
            const HostContext context(thread % 2 ? EGL_OPENGL_API : EGL_OPENGL_ES_API);
            for (unsigned round = 0; round < 15; ++round) {
                const Module again;
                const Correction correction{0.1 * (round + thread), 5.0};
                handed[thread] = std::make_unique<Instance>(outer, 1 + static_cast<int>(7 * round), 11, correction);
                EXPECT_TRUE(context.isUntouched());
                handed[thread]->expectRight(round, correction);
                shared.expectRight(thread, {1.3, 4.0});
                EXPECT_TRUE(context.isUntouched());
                step.arrive_and_wait();
                shared.expectRight(round + thread, {1.3, 4.0});
                handed[(thread + 1) % kThreads].reset();
                EXPECT_TRUE(context.isUntouched());
                step.arrive_and_wait();
            }
        });
}

/// The last instance of a tool that has closed the module leaves the effect set up for the next one, for a while. Of
/// each set-up, the plug-in tells where it doesn't get among the tool's own output.
TEST(Frei0rModule, ComesAndGoes) {
    const auto setsUp = [](unsigned seed) {
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        {
            const Module module;
            const Instance instance(module, 9, 6, {1.2, 1.0});
            module.deinit();
            instance.expectRight(seed, {1.2, 1.0});
            std::cout << "the tool's own" << std::endl;
        }
        EXPECT_EQ(testing::internal::GetCapturedStdout(), "the tool's own\n");
        return testing::internal::GetCapturedStderr().find("OpenGL Renderer") != std::string::npos;
    };
    const auto threads = [] {
        const std::filesystem::directory_iterator all("/proc/self/task");
        return std::distance(begin(all), end(all));
    };
    setsUp(0);
    for (unsigned round = 1; round < 5; ++round)
        EXPECT_FALSE(setsUp(round)) << round;
    const auto before = threads();
    std::this_thread::sleep_for(std::chrono::seconds(3));
    EXPECT_LT(threads(), before) << "the effect is still set up";
    EXPECT_TRUE(setsUp(5));
}

} // namespace

} // namespace Ombrique::Tests
