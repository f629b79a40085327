#include "Hosts/Shots/FrameRanges.h"

#include "Hosts/Pictures/Failure.h"
#include "Hosts/Pictures/TextParts.h"

#include <algorithm>
#include <cstdint>

namespace Ombrique::Hosts {

namespace {

/// Some eleven hours of film; a slip of the finger is more.
constexpr std::int64_t kMostFrames = 1'000'000;

struct Range {
    std::int64_t first, last, step;
};

/// FIRST, FIRST-LAST or FIRST-LASTxSTEP.
std::optional<Range> parseRange(std::string_view text) {
    const auto ends = split(text, '-');
    const auto tail = split(ends.back(), 'x');
    if (ends.size() > 2 || tail.size() > 2 || (ends.size() == 1 && tail.size() == 2))
        return std::nullopt;
    const auto last = parseCount(tail.front());
    const auto first = ends.size() == 2 ? parseCount(ends.front()) : last;
    const auto step = tail.size() == 2 ? parseCount(tail.back()) : 1;
    if (!first || !last || !step || *last < *first || *step < 1)
        return std::nullopt;
    return Range{*first, *last, *step};
}

} // namespace

std::vector<int> parseFrameRanges(const std::string& text) {
    std::vector<int> frames;
    for (const std::string_view part : split(text, ',')) {
        const auto range = parseRange(part);
        if (!range)
            throw Failure("\"" + std::string(part) + "\" is no range of frames, as 7, 1-100 or 1-100x2");
        if ((range->last - range->first) / range->step + std::ssize(frames) >= kMostFrames)
            throw Failure("more than " + std::to_string(kMostFrames) + " frames");
        for (std::int64_t frame = range->first; frame <= range->last; frame += range->step)
            frames.push_back(static_cast<int>(frame));
    }
    std::ranges::sort(frames);
    frames.erase(std::unique(frames.begin(), frames.end()), frames.end());
    return frames;
}

std::string describeFrames(const std::vector<int>& frames) {
    std::string text;
    for (auto first = frames.begin(); first != frames.end();) {
        auto last = first;
        while (last + 1 != frames.end() && last[1] == *last + 1)
            ++last;
        text += (text.empty() ? "" : ",") + std::to_string(*first);
        if (last != first)
            text += "-" + std::to_string(*last);
        first = last + 1;
    }
    return text;
}

std::string describeGaps(const std::vector<int>& frames) {
    constexpr std::size_t kMostTold = 100;
    std::vector<int> missing;
    for (std::size_t i = 1; i < frames.size(); ++i)
        for (int frame = frames[i - 1] + 1; frame < frames[i] && missing.size() <= kMostTold; ++frame)
            missing.push_back(frame);
    const bool areMore = missing.size() > kMostTold;
    if (areMore)
        missing.pop_back();
    return missing.empty() ? "" : "missing: " + describeFrames(missing) + (areMore ? " and more" : "");
}

FramePart parseFramePart(const std::string& text) {
    const auto numbers = split(text, '/');
    const auto place = parseCount(numbers.front());
    const auto of = parseCount(numbers.back());
    if (numbers.size() != 2 || !place || !of || *place < 1 || *place > *of)
        throw Failure("is no part, as 3/20");
    return {*place, *of};
}

std::vector<int> framesOfPart(const std::vector<int>& frames, FramePart part) {
    const auto border = [&](std::int64_t parts) { return frames.begin() + std::ssize(frames) * parts / part.of; };
    return {border(part.place - 1), border(part.place)};
}

} // namespace Ombrique::Hosts
