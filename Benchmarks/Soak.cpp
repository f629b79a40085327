#include "Hosts/Engine/Effect.h"
#include "Tests/Support/OpenGLObjects.h"
#include "Tests/Support/PixelOracle.h"

#include <algorithm>
#include <charconv>
#include <climits>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <malloc.h>
#include <random>
#include <stdexcept>
#include <string_view>
#include <unistd.h>
#include <vector>

// Many frames of changing sizes and settings, small ones and then large ones, each hundredth of which is compared with
// the oracle. Prints what the process holds at the start, in the middle and at the end of either part, and exits with 1
// where a frame was wrong or that grew:
//
//     Benchmarks/run Soak [SMALL LARGE]      the numbers of frames, 20000 and 500 where nothing is said
namespace Ombrique::Benchmarks {

namespace {

using Hosts::World;

constexpr int kEachChecked = 100;
/// What the resident memory may differ by between the middle and the end: the allocator's holes come and go.
constexpr double kTolerated = 1.05;

struct Held {
    double residentMebibytes = 0;
    long handles = 0;
    std::map<std::string, int> objects;
};

/// More names of OpenGL's than a frame takes, and than all else does.
constexpr unsigned kNamesPerFrame = 10;
constexpr unsigned kNamesBesides = 100'000;

Held held(unsigned framesSoFar) {
    Held now;
    long pages = 0;
    std::ifstream("/proc/self/statm").ignore(INT_MAX, ' ') >> pages;
    now.residentMebibytes = static_cast<double>(pages) * static_cast<double>(sysconf(_SC_PAGESIZE)) / (1 << 20);
    now.handles = std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
    now.objects = Tests::countOpenGLObjects(kNamesBesides + kNamesPerFrame * framesSoFar);
    return now;
}

void print(const char* part, const char* when, const Held& now) {
    std::printf("%-6s %-7s %8.1f MiB resident, %ld handles", part, when, now.residentMebibytes, now.handles);
    for (const auto& [kind, count] : now.objects)
        std::printf(", %s %d", kind.c_str(), count);
    std::printf("\n");
    std::fflush(stdout);
}

class Soak {
public:
    Soak() {
        if (const Hosts::CommandResult result = mEffect.setUp(); !result.clean())
            throw std::runtime_error(result.describe());
        Tests::letGoOfContext(); // then the effect's own stays current after a frame, and its objects can be counted
    }

    /// Whether what was held stayed the same.
    template <typename NextSize> bool run(const char* part, int frames, NextSize nextSize) {
        for (int i = 0; i < std::max(1, frames / 10); ++i) // until all sizes have been met
            renderOne(nextSize, false);
        print(part, "start", held(mFrames));
        Held middle;
        for (int i = 0; i < frames; ++i) {
            renderOne(nextSize, i % kEachChecked == 0);
            if (i == frames / 2)
                print(part, "middle", middle = held(mFrames));
        }
        const Held end = held(mFrames);
        print(part, "end", end);
        return end.handles == middle.handles && end.objects == middle.objects &&
               end.residentMebibytes <= middle.residentMebibytes * kTolerated;
    }

    std::mt19937& random() { return mRandom; }
    int wrongFrames() const { return mWrongFrames; }
    int checkedFrames() const { return mCheckedFrames; }

private:
    template <typename NextSize> void renderOne(NextSize nextSize, bool check) {
        ++mFrames;
        World& input = nextSize();
        const double contrast = 0.01 * static_cast<double>(mRandom() % 300);
        const double brightness = static_cast<double>(mRandom() % 100) - 50.0;
        World output(input.width(), input.height());
        const Hosts::FrameResult result = mEffect.render(
            {.input = &input, .output = &output, .values = {{1, contrast}, {2, brightness}}, .verifyInput = check});
        std::string fault = result.clean() ? "" : result.describe();
        if (check && fault.empty())
            fault = Tests::compareWithOracle(input, output, {contrast, brightness});
        mCheckedFrames += check;
        if (!fault.empty() && ++mWrongFrames <= 10)
            std::printf("%d by %d, contrast %g, brightness %g: %s\n", input.width(), input.height(), contrast,
                        brightness, fault.c_str());
    }

    Hosts::PluginBundle mBundle{OMBRIQUE_TEST_BUNDLE};
    Hosts::Effect mEffect{mBundle};
    std::mt19937 mRandom{2026};
    unsigned mFrames = 0;
    int mWrongFrames = 0;
    int mCheckedFrames = 0;
};

int soak(int small, int large) {
    Soak soak;
    const auto nextOf = [&soak](std::vector<World>& pictures) {
        return [&]() -> World& { return pictures[soak.random()() % pictures.size()]; };
    };
    std::vector<World> pictures;
    for (unsigned i = 0; i < 40; ++i)
        pictures.push_back(Tests::makePicture(static_cast<int>(1 + i * 37 % 97), static_cast<int>(1 + i * 53 % 61), i));
    bool flat = soak.run("small", small, nextOf(pictures));
    pictures.clear();
    for (const auto& [width, height] : {std::pair{3840, 2160}, {3840, 2160}, {2160, 3840}, {3001, 1999}})
        pictures.push_back(Tests::makePicture(width, height, 7));
    flat = soak.run("UHD", large, nextOf(pictures)) && flat;
    std::printf("%d frames, of which %d were compared with the oracle: %d wrong; what was held %s\n", small + large,
                soak.checkedFrames(), soak.wrongFrames(), flat ? "stayed flat" : "GREW");
    return soak.wrongFrames() == 0 && flat ? 0 : 1;
}

int number(std::string_view text) {
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || value < 1)
        throw std::invalid_argument("not a number of frames: " + std::string(text));
    return value;
}

} // namespace

} // namespace Ombrique::Benchmarks

int main(int argc, char** argv) {
    using namespace Ombrique::Benchmarks;
    // Large blocks go back to the system at once, so that holes between them aren't taken for something held.
    mallopt(M_MMAP_THRESHOLD, 1 << 20);
    try {
        if (argc != 1 && argc != 3)
            throw std::invalid_argument("usage: Soak [SMALL LARGE]");
        return soak(argc == 3 ? number(argv[1]) : 20000, argc == 3 ? number(argv[2]) : 500);
    } catch (const std::exception& exception) {
        std::fprintf(stderr, "Soak: %s\n", exception.what());
        return 1;
    }
}
