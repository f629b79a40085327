#pragma once

#include <charconv>
#include <optional>
#include <string_view>
#include <vector>

namespace Ombrique::Hosts {

/// The whole number from 0 on that the text spells with digits alone; nothing where it isn't one that an int holds.
inline std::optional<int> parseCount(std::string_view text) {
    int number = 0;
    const auto [rest, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool isWhole = error == std::errc{} && rest == text.data() + text.size() && !text.starts_with('-');
    return isWhole ? std::optional(number) : std::nullopt;
}

/// The parts of a text between separators, empty ones too; one at least.
inline std::vector<std::string_view> split(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    for (;;) {
        const std::size_t end = text.find(separator);
        parts.push_back(text.substr(0, end));
        if (end == std::string_view::npos)
            return parts;
        text.remove_prefix(end + 1);
    }
}

} // namespace Ombrique::Hosts
