#include "Plugins/Shared/Math/Color.h"

#include <cstdio>

namespace Ombrique::GaussianBlur {

namespace {

std::string channelDigits(double channel) {
    constexpr double kLargest = 0xFFFFFFFFU;
    const double scaled = channel * 255.0;
    const unsigned value = scaled > 0.0 ? static_cast<unsigned>(std::fmin(scaled, kLargest)) : 0U;
    char digits[2 * sizeof value + 1];
    std::snprintf(digits, sizeof digits, "%X", value);
    return digits;
}

} // namespace

Color::Color(const std::string& text) {
    if (text.empty() || text.front() != '#')
        return;
    const std::string digits = text.substr(1);
    // Converted before the length is looked at: text without a number throws whatever its length.
    const std::uint64_t packed = std::stoull(digits, nullptr, 16);
    switch (digits.size()) {
    case 3:
    case 4:
        *this = unpacked(packed, 4, digits.size() == 4);
        break;
    case 6:
    case 8:
        *this = unpacked(packed, 8, digits.size() == 8);
        break;
    default:
        break;
    }
}

std::string Color::toHexString() {
    const std::string alphaDigits = alpha == 1.0 ? "" : channelDigits(alpha);
    return "#" + alphaDigits + channelDigits(red) + channelDigits(green) + channelDigits(blue);
}

} // namespace Ombrique::GaussianBlur
