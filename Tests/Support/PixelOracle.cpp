#include "Tests/Support/PixelOracle.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <random>
#include <sstream>
#include <string_view>

namespace Ombrique::Tests {

namespace {

using Hosts::World;

/// How far from half way between two steps a value must lie for its rounding to be sure, before the coordinates of
/// texels add to it.
constexpr double kTie = 0.01;
/// The GPU's single precision, as a part of the value.
constexpr double kPrecision = 0x1p-24;

/// The values that a channel may take.
struct Range {
    int least = 0;
    int most = 0;
};

Range rounded(double least, double most, double tie) {
    // Not a number is stored as 0.
    const auto step = [](double value) {
        return std::isnan(value) ? 0 : static_cast<int>(std::floor(std::clamp(value, 0.0, 255.0) + 0.5));
    };
    return {step(least - tie), step(most + tie)};
}

/// How far a coordinate of single precision may miss the centre of a texel, as a part of the texel. The input is
/// sampled linearly, so by so much of what its neighbours differ (255 steps at most) each channel is off.
double offCentreOf(const World& input) { return kPrecision * (input.width() + input.height()); }

/// What the second pass adds, as a part of the neighbours' difference: nothing where weights have 8 bits.
double traceOf(const World& input) {
    static const char* const driver = std::getenv("GALLIUM_DRIVER");
    return driver && std::string_view(driver) == "softpipe" ? offCentreOf(input) : 0.0;
}

/// One colour channel on its way through the premultiplied 8-bit picture between the two passes.
Range correctedColour(int colour, int alpha, const Correction& correction, const World& input) {
    const double trace = traceOf(input) * 255.0 * 255.0;
    if (alpha == 0)
        return {0, trace > 0.0 ? 255 : 0};
    const double corrected = (colour / 255.0 - 0.5) * correction.contrast + 0.5 + correction.brightness / 100.0;
    const double product = corrected * alpha;
    // What the colour's and the alpha's misses add to the product.
    const double missed = offCentreOf(input) * (std::abs(correction.contrast) * alpha + std::abs(corrected) * 255.0);
    const Range premultiplied = rounded(product, product, std::isfinite(missed) ? kTie + missed : kTie);
    return rounded(premultiplied.least * 255.0 / alpha, premultiplied.most * 255.0 / alpha, kTie + trace / alpha);
}

std::array<int, 4> channels(const PF_Pixel8& pixel) { return {pixel.alpha, pixel.red, pixel.green, pixel.blue}; }

/// The pixels of `output` that lie outside of what `expectedAt(x, y)` allows, in words.
template <typename Expected> std::string compare(const World& output, Expected expectedAt) {
    int count = 0;
    int worst = 0;
    std::ostringstream text;
    for (int y = 0; y < output.height(); ++y) {
        for (int x = 0; x < output.width(); ++x) {
            const std::array<int, 4> actual = channels(output.pixel<PF_Pixel8>(x, y));
            const std::array<Range, 4> expected = expectedAt(x, y);
            bool differs = false;
            for (std::size_t i = 0; i < 4; ++i) {
                const auto [least, most] = expected[i];
                const int difference = std::max(least - actual[i], actual[i] - most);
                differs |= difference > 0;
                if (difference <= worst)
                    continue;
                worst = difference;
                text.str("");
                text << "worst at (" << x << ", " << y << "), channel " << i
                     << " of alpha, red, green, blue: " << actual[i] << " instead of " << least << " to " << most;
            }
            count += differs ? 1 : 0;
        }
    }
    return count == 0 ? "" : std::to_string(count) + " pixels differ, " + text.str();
}

} // namespace

World makePicture(int width, int height, unsigned seed, bool opaque, Hosts::WorldLayout layout) {
    World world(width, height, Hosts::PixelDepth::Bits8, layout);
    std::mt19937 random(seed);
    const auto byte = [&random] { return static_cast<std::uint8_t>(random()); };
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const auto kind = random() % 3;
            const std::uint8_t alpha = opaque || kind == 0 ? 255 : kind == 1 ? byte() : 0;
            world.setPixel(x, y, PF_Pixel8{alpha, byte(), byte(), byte()});
        }
    }
    return world;
}

std::string compareWithOracle(const World& input, const World& output, const Correction& correction) {
    return compare(output, [&](int x, int y) {
        std::array<Range, 4> expected{};
        if (x < input.width() && y < input.height()) {
            const std::array<int, 4> source = channels(input.pixel<PF_Pixel8>(x, y));
            expected[0] = {source[0], source[0]};
            for (std::size_t i = 1; i < 4; ++i)
                expected[i] = correctedColour(source[i], source[0], correction, input);
        }
        return expected;
    });
}

std::string comparePixels(const World& expected, const World& actual) {
    if (expected.width() != actual.width() || expected.height() != actual.height())
        return "the sizes differ";
    return compare(actual, [&](int x, int y) {
        const auto [alpha, red, green, blue] = channels(expected.pixel<PF_Pixel8>(x, y));
        return std::array<Range, 4>{{{alpha, alpha}, {red, red}, {green, green}, {blue, blue}}};
    });
}

} // namespace Ombrique::Tests
