#include "Hosts/CommandLine/Arguments.h"
#include "Hosts/Pictures/Failure.h"
#include "Hosts/Shots/FramePattern.h"
#include "Hosts/Shots/FrameRanges.h"
#include "Hosts/Shots/Keyframes.h"
#include "Tests/Fuzz/Require.h"

#include <algorithm>

// Reads any text as each of the small languages of the command line, and all of it as a command line, a word a line.
// What is taken has to mean what it says.
namespace Ombrique::Tests {

namespace {

using namespace Hosts;

/// Calls `parse`, and takes a refusal for an answer.
template <typename Parse> void parsed(Parse parse) {
    try {
        parse();
    } catch (const Failure&) {
    } catch (const UsageError&) {
    }
}

void frameRanges(const std::string& text) {
    const std::vector<int> frames = parseFrameRanges(text);
    require(!frames.empty() && frames.front() >= 0, "ranges name frames");
    require(std::adjacent_find(frames.begin(), frames.end(), std::greater_equal()) == frames.end(), "in order, once");
    require(parseFrameRanges(describeFrames(frames)) == frames, "what describes frames names them");
}

void framePart(const std::string& text) {
    const FramePart part = parseFramePart(text);
    require(part.place >= 1 && part.place <= part.of, "a part is one of its parts");
    const std::vector<int> frames = parseFrameRanges("1-30x3,100-102");
    std::vector<int> together;
    const int of = std::min(part.of, 100);
    for (int place = 1; place <= of; ++place) {
        const std::vector<int> own = framesOfPart(frames, {place, of});
        require(std::abs(std::ssize(own) * of - std::ssize(frames)) < of, "parts are equal, but for one frame");
        together.insert(together.end(), own.begin(), own.end());
    }
    require(together == frames, "all parts are all frames, in their order");
}

void framePattern(const std::string& text) {
    const auto pattern = FramePattern::parse(text);
    if (!pattern)
        return;
    require(pattern->at(1) != pattern->at(2), "frames have files of their own");
    require(pattern->at(1).parent_path() == std::filesystem::path(text).parent_path(), "in the pattern's folder");
}

const Slider kSlider{1, "Contrast Value", 0.0, 10.0, 1.0, 2};

void slider(const std::string& text) {
    const SliderValue value = parseSliderValue(kSlider, text);
    for (const int frame : {0, 1, 1000, 2147483647}) {
        const double there = value.at(timeOfFrame(frame));
        require(there >= kSlider.minimum && there <= kSlider.maximum,
                "values keep the slider's range, between keys too");
    }
}

void sliderList(const std::string& text) { require(!parseSliderList(kSlider, text).empty(), "a list has a value"); }

void commandLine(std::string text) {
    std::ranges::replace(text, '\n', '\0');
    std::vector<const char*> words{"ombrique-render"};
    for (std::size_t start = 0; start < text.size(); start = text.find('\0', start) + 1) {
        words.push_back(text.c_str() + start);
        if (text.find('\0', start) == std::string::npos)
            break;
    }
    const Arguments arguments = parseArguments(static_cast<int>(words.size()), words.data(), {}, {kSlider});
    require(arguments.jobs >= 0, "jobs are counted");
    require(!arguments.answer.empty() || arguments.about || !arguments.shot.input.empty(), "there is something to do");
}

} // namespace

} // namespace Ombrique::Tests

/// Of long texts, much time and little else comes.
constexpr std::size_t kLongest = 500;

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    using namespace Ombrique::Tests;
    if (size > kLongest)
        return 0;
    const std::string text(reinterpret_cast<const char*>(data), size);
    for (const auto read : {frameRanges, framePart, framePattern, slider, sliderList})
        parsed([&] { read(text); });
    parsed([&] { commandLine(text); });
    return 0;
}
