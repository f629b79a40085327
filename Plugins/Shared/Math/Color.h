#pragma once

#include "Plugins/Shared/Math/Float.h"

#include <cstdint>
#include <string>

namespace Ombrique::GaussianBlur {

/// A colour of four channels, nominally 0 to 1; nothing clamps them. Alpha 1 is opaque, and it is a channel like the
/// others to all arithmetic. A colour with any channel below 0 is nil: no colour.
struct Color {
    double red = 1.0;
    double green = 1.0;
    double blue = 1.0;
    double alpha = 1.0;

    /// Opaque white.
    Color() = default;
    constexpr Color(double r, double g, double b, double a) noexcept : red(r), green(g), blue(b), alpha(a) {}
    /// From "#RGB", "#ARGB", "#RRGGBB" or "#AARRGGBB", alpha first, in hexadecimal digits of either case. The number of
    /// characters selects the form, and the number is read up to the first character that is no digit, after white
    /// space, a sign and "0x", if any. Any other count, or text that doesn't begin with "#", gives opaque white. Throws
    /// std::invalid_argument where no digit follows the "#", std::out_of_range where the number exceeds 64 bits.
    /// A channel is its digits over 15 or 255 in single precision.
    explicit Color(const std::string& text);
    /// From 0xAARRGGBB, each channel over 255 in single precision. 0 is transparent black.
    explicit constexpr Color(unsigned int argb) noexcept : Color(unpacked(argb, 8, true)) {}

    /// Nil colours are equal to one another; otherwise each channel within 1e-12, the bound included.
    constexpr bool equal(const Color& other) const noexcept {
        return (isNil() && other.isNil()) || (isNear(red, other.red) && isNear(green, other.green) &&
                                              isNear(blue, other.blue) && isNear(alpha, other.alpha));
    }
    constexpr bool operator==(const Color& other) const noexcept { return equal(other); }
    constexpr bool operator!=(const Color& other) const noexcept { return !equal(other); }
    constexpr bool isNil() const noexcept { return red < 0.0 || green < 0.0 || blue < 0.0 || alpha < 0.0; }

    constexpr double r() const noexcept { return red; }
    constexpr double g() const noexcept { return green; }
    constexpr double b() const noexcept { return blue; }
    constexpr double a() const noexcept { return alpha; }

    constexpr Color operator-(const Color& c) const noexcept {
        return Color(red - c.red, green - c.green, blue - c.blue, alpha - c.alpha);
    }
    constexpr Color operator+(const Color& c) const noexcept {
        return Color(red + c.red, green + c.green, blue + c.blue, alpha + c.alpha);
    }
    constexpr Color operator*(const Color& c) const noexcept {
        return Color(red * c.red, green * c.green, blue * c.blue, alpha * c.alpha);
    }
    constexpr Color operator*(const double& v) const noexcept { return Color(red * v, green * v, blue * v, alpha * v); }

    constexpr void setNil() noexcept { set(-1.0, -1.0, -1.0, -1.0); }
    constexpr void set(double r, double g, double b, double a) noexcept { *this = Color(r, g, b, a); }
    /// From `from` (t = 0) to `to` (t = 1), t clamped. The weight of `from` is rounded to single precision and that of
    /// `to` isn't, so that a blend of a colour with itself may miss it by some 1e-8.
    static constexpr Color lerp(const Color& from, const Color& to, double t) noexcept {
        const double weight = GaussianBlur::clamp(t, 0.0, 1.0);
        return to * weight + from * static_cast<float>(1.0 - weight);
    }

    /// "#RGB" without alpha where alpha is exactly 1, else "#ARGB": each channel times 255, rounded down, in upper-case
    /// hexadecimal without leading zeros. So the widths aren't fixed, and the constructor reads a colour with a channel
    /// below 16/255 in another form or not at all. Outside 0 to 1, a channel below 0 and NaN print as 0, and one above
    /// 1 prints as many digits as it takes, up to FFFFFFFF.
    std::string toHexString();

private:
    /// The colour whose channels are fields of a packed number, over the largest value of a field, in single precision:
    /// alpha on top, then red, green and blue.
    static constexpr Color unpacked(std::uint64_t packed, unsigned bitsPerField, bool hasAlpha) noexcept {
        const std::uint64_t largest = (1U << bitsPerField) - 1U;
        const auto channel = [&](unsigned field) {
            return static_cast<float>(packed >> (field * bitsPerField) & largest) / static_cast<float>(largest);
        };
        return Color(channel(2), channel(1), channel(0), hasAlpha ? channel(3) : 1.0);
    }
};

} // namespace Ombrique::GaussianBlur
