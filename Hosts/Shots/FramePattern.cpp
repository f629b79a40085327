#include "Hosts/Shots/FramePattern.h"

#include "Hosts/Pictures/TextParts.h"

#include <algorithm>
#include <dirent.h>
#include <memory>
#include <string_view>

namespace Ombrique::Hosts {

namespace {

/// More digits than an int has would only make long names.
constexpr std::size_t kMostDigits = 10;

/// Where in a name the number goes.
struct Place {
    std::size_t start;
    std::size_t length;
    std::size_t digits;
};

/// The last run of a sign, each of which is a digit.
std::optional<Place> lastRun(std::string_view name, char sign) {
    const std::size_t last = name.find_last_of(sign);
    if (last == std::string_view::npos)
        return std::nullopt;
    const std::size_t start = name.find_last_not_of(sign, last) + 1; // npos + 1 is 0
    return Place{start, last + 1 - start, last + 1 - start};
}

/// The last "%d" or "%04d", of one digit to nine.
std::optional<Place> lastDirective(std::string_view name) {
    for (std::size_t start = name.rfind('%'); start != std::string_view::npos; start = name.rfind('%', start - 1)) {
        const std::string_view rest = name.substr(start + 1);
        if (rest.starts_with('d'))
            return Place{start, 2, 1};
        if (rest.size() >= 3 && rest[0] == '0' && rest[1] >= '1' && rest[1] <= '9' && rest[2] == 'd')
            return Place{start, 4, static_cast<std::size_t>(rest[1] - '0')};
        if (start == 0)
            break;
    }
    return std::nullopt;
}

std::optional<Place> placeIn(std::string_view name) {
    if (const auto hashes = lastRun(name, '#'))
        return hashes;
    if (const auto directive = lastDirective(name))
        return directive;
    return lastRun(name, '@');
}

} // namespace

// OpenImageIO reads such patterns too, but its "####" stands for 16 digits.
std::optional<FramePattern> FramePattern::parse(const std::filesystem::path& path) {
    const std::string name = path.filename().string();
    const std::optional<Place> place = placeIn(name);
    if (!place || place->digits > kMostDigits)
        return std::nullopt;
    FramePattern pattern;
    pattern.mFolder = path.parent_path();
    pattern.mBefore = name.substr(0, place->start);
    pattern.mAfter = name.substr(place->start + place->length);
    pattern.mDigits = place->digits;
    return pattern;
}

std::filesystem::path FramePattern::at(int frame) const {
    const std::string number = std::to_string(frame);
    return mFolder / (mBefore + std::string(mDigits - std::min(mDigits, number.size()), '0') + number + mAfter);
}

std::optional<int> FramePattern::numberIn(const std::string& name) const {
    if (name.size() < mBefore.size() + mAfter.size() || !name.starts_with(mBefore) || !name.ends_with(mAfter))
        return std::nullopt;
    const auto digits = name.substr(mBefore.size(), name.size() - mBefore.size() - mAfter.size());
    const auto number = parseCount(digits);
    return number && at(*number).filename() == name ? number : std::nullopt;
}

std::vector<int> FramePattern::framesThere() const {
    std::vector<int> frames;
    // The library's iterator ends the program where it finds no memory.
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir(mFolder.empty() ? "." : mFolder.c_str()), closedir);
    while (const dirent* const entry = folder ? readdir(folder.get()) : nullptr)
        if (const auto number = numberIn(entry->d_name))
            frames.push_back(*number);
    std::ranges::sort(frames);
    return frames;
}

} // namespace Ombrique::Hosts
