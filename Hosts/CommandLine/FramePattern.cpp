#include "Hosts/CommandLine/FramePattern.h"

#include "Hosts/CommandLine/TextParts.h"

#include <algorithm>
#include <climits>
#include <dirent.h>
#include <memory>
#include <regex>

namespace Ombrique::Hosts {
namespace {

/// More digits than an int has would only make long names.
constexpr std::size_t kMostDigits = 10;

} // namespace

// OpenImageIO reads such patterns too, but its "####" stands for 16 digits.
std::optional<FramePattern> FramePattern::parse(const std::filesystem::path& path) {
    static const std::regex kPlaces[] = {std::regex("#+"), std::regex("%(0[1-9])?d"), std::regex("@+")};
    const std::string name = path.filename().string();
    // No file has a longer name, and the library's matching goes a level deeper with each character.
    if (name.size() > NAME_MAX)
        return std::nullopt;
    for (const std::regex& place : kPlaces) {
        std::smatch last;
        for (auto match = std::sregex_iterator(name.begin(), name.end(), place); match != std::sregex_iterator();
             ++match)
            last = *match;
        if (last.empty())
            continue;
        FramePattern pattern;
        pattern.mFolder = path.parent_path();
        pattern.mBefore = std::string(name.cbegin(), last[0].first);
        pattern.mAfter = std::string(last[0].second, name.cend());
        const std::string text = last.str();
        pattern.mDigits = text.front() != '%' ? text.size()
                          : last[1].matched   ? static_cast<std::size_t>(text[2] - '0')
                                              : 1;
        return pattern.mDigits <= kMostDigits ? std::optional(pattern) : std::nullopt;
    }
    return std::nullopt;
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
