#include "Plugins/Shared/Math/Color.h"

#include <cstdint>
#include <cstdio>

namespace Ombrique::GaussianBlur {

namespace {

/// The channel in the given field of a packed colour, counted from the low end, over the largest value of a field; in
/// single precision.
double unpackedChannel(std::uint64_t packed, unsigned field, unsigned bitsPerField) {
    const std::uint64_t largest = (1U << bitsPerField) - 1U;
    return static_cast<float>(packed >> (field * bitsPerField) & largest) / static_cast<float>(largest);
}

Color unpackedColor(std::uint64_t packed, unsigned bitsPerField, bool hasAlpha) {
    return Color(unpackedChannel(packed, 2, bitsPerField), unpackedChannel(packed, 1, bitsPerField),
                 unpackedChannel(packed, 0, bitsPerField), hasAlpha ? unpackedChannel(packed, 3, bitsPerField) : 1.0);
}

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
        *this = unpackedColor(packed, 4, digits.size() == 4);
        break;
    case 6:
    case 8:
        *this = unpackedColor(packed, 8, digits.size() == 8);
        break;
    default:
        break;
    }
}

Color::Color(unsigned int argb) : Color(unpackedColor(argb, 8, true)) {}

bool Color::equal(const Color& other) const {
    if (isNil() && other.isNil())
        return true;
    return isNear(red, other.red) && isNear(green, other.green) && isNear(blue, other.blue) &&
           isNear(alpha, other.alpha);
}

Color Color::lerp(const Color& from, const Color& to, double t) {
    const double weight = GaussianBlur::clamp(t, 0.0, 1.0);
    const double complement = static_cast<float>(1.0 - weight);
    return to * weight + from * complement;
}

std::string Color::toHexString() {
    const std::string alphaDigits = alpha == 1.0 ? "" : channelDigits(alpha);
    return "#" + alphaDigits + channelDigits(red) + channelDigits(green) + channelDigits(blue);
}

} // namespace Ombrique::GaussianBlur
