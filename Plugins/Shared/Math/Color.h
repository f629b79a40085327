#pragma once

#include "Plugins/Shared/Math/Float.h"

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
    Color(double r, double g, double b, double a) : red(r), green(g), blue(b), alpha(a) {}
    /// From "#RGB", "#ARGB", "#RRGGBB" or "#AARRGGBB", alpha first, in hexadecimal digits of either case. The number of
    /// characters selects the form, and the number is read up to the first character that is no digit, after white
    /// space, a sign and "0x", if any. Any other count, or text that doesn't begin with "#", gives opaque white. Throws
    /// std::invalid_argument where no digit follows the "#", std::out_of_range where the number exceeds 64 bits.
    /// A channel is its digits over 15 or 255 in single precision.
    explicit Color(const std::string& text);
    /// From 0xAARRGGBB, each channel over 255 in single precision. 0 is transparent black.
    explicit Color(unsigned int argb);

    /// Nil colours are equal to one another; otherwise each channel within 1e-12, the bound included.
    bool equal(const Color& other) const;
    bool operator==(const Color& other) const { return equal(other); }
    bool operator!=(const Color& other) const { return !equal(other); }
    bool isNil() const { return red < 0.0 || green < 0.0 || blue < 0.0 || alpha < 0.0; }

    double r() const { return red; }
    double g() const { return green; }
    double b() const { return blue; }
    double a() const { return alpha; }

    Color operator-(const Color& c) const {
        return Color(red - c.red, green - c.green, blue - c.blue, alpha - c.alpha);
    }
    Color operator+(const Color& c) const {
        return Color(red + c.red, green + c.green, blue + c.blue, alpha + c.alpha);
    }
    Color operator*(const Color& c) const {
        return Color(red * c.red, green * c.green, blue * c.blue, alpha * c.alpha);
    }
    Color operator*(const double& v) const { return Color(red * v, green * v, blue * v, alpha * v); }

    void setNil() { set(-1.0, -1.0, -1.0, -1.0); }
    void set(double r, double g, double b, double a) { *this = Color(r, g, b, a); }
    /// From `from` (t = 0) to `to` (t = 1), t clamped. The weight of `from` is rounded to single precision and that of
    /// `to` isn't, so that a blend of a colour with itself may miss it by some 1e-8.
    static Color lerp(const Color& from, const Color& to, double t);

    /// "#RGB" without alpha where alpha is exactly 1, else "#ARGB": each channel times 255, rounded down, in upper-case
    /// hexadecimal without leading zeros. So the widths aren't fixed, and the constructor reads a colour with a channel
    /// below 16/255 in another form or not at all. Outside 0 to 1, a channel below 0 and NaN print as 0, and one above
    /// 1 prints as many digits as it takes, up to FFFFFFFF.
    std::string toHexString();
};

} // namespace Ombrique::GaussianBlur
