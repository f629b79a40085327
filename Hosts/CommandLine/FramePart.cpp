#include "Hosts/CommandLine/FramePart.h"

#include "Hosts/CommandLine/Failure.h"
#include "Hosts/CommandLine/TextParts.h"

#include <cstdint>

namespace Ombrique::Hosts {

FramePart parseFramePart(const std::string& text) {
    const auto numbers = split(text, '/');
    const auto place = parseCount(numbers.front());
    const auto of = parseCount(numbers.back());
    if (numbers.size() != 2 || !place || !of || *place < 1 || *place > *of)
        throw Failure("--part " + text + ": is no part, as 3/20");
    return {*place, *of};
}

std::vector<int> framesOfPart(const std::vector<int>& frames, FramePart part) {
    const auto border = [&](std::int64_t parts) { return frames.begin() + std::ssize(frames) * parts / part.of; };
    return {border(part.place - 1), border(part.place)};
}

} // namespace Ombrique::Hosts
