#include "Tests/Support/PixelOracle.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <random>
#include <sstream>

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

Range rounded(double least, double most, double tie = kTie) {
    // Not a number is stored as 0.
    const auto step = [](double value) {
        return std::isnan(value) ? 0 : static_cast<int>(std::floor(std::clamp(value, 0.0, 255.0) + 0.5));
    };
    return {step(least - tie), step(most + tie)};
}

/// How far a coordinate of single precision may miss the centre of a texel, as a part of the texel. The input is
/// sampled linearly, so by so much of what its neighbours differ (255 steps at most) each channel is off.
double offCentreOf(const World& input) { return kPrecision * (input.width() + input.height()); }

/// One colour channel on its way through the premultiplied 8-bit picture between the two passes.
Range correctedColour(int colour, int alpha, double contrast, double brightness, double offCentre) {
    if (alpha == 0)
        return {};
    const double corrected = (colour / 255.0 - 0.5) * contrast + 0.5 + brightness / 100.0;
    const double product = corrected * alpha;
    // What the colour's and the alpha's misses add to the product.
    const double missed = offCentre * (std::abs(contrast) * alpha + std::abs(corrected) * 255.0);
    const Range premultiplied = rounded(product, product, std::isfinite(missed) ? kTie + missed : kTie);
    return rounded(premultiplied.least * 255.0 / alpha, premultiplied.most * 255.0 / alpha);
}

std::array<int, 4> channels(const PF_Pixel8& pixel) { return {pixel.alpha, pixel.red, pixel.green, pixel.blue}; }

/// Collects the pixels that differ.
class Differences {
public:
    void compare(int x, int y, const std::array<int, 4>& actual, const std::array<Range, 4>& expected) {
        int difference = 0;
        for (std::size_t i = 0; i < 4; ++i)
            difference = std::max({difference, expected[i].least - actual[i], actual[i] - expected[i].most});
        if (difference == 0)
            return;
        ++mCount;
        if (difference > mWorst) {
            mWorst = difference;
            std::ostringstream text;
            text << "worst at (" << x << ", " << y << "): alpha, red, green, blue";
            for (std::size_t i = 0; i < 4; ++i) {
                text << (i == 0 ? " " : ", ") << actual[i] << " instead of " << expected[i].least;
                if (expected[i].most != expected[i].least)
                    text << " to " << expected[i].most;
            }
            mText = text.str();
        }
    }

    std::string text() const { return mCount == 0 ? "" : std::to_string(mCount) + " pixels differ, " + mText; }

private:
    int mCount = 0;
    int mWorst = 0;
    std::string mText;
};

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

std::string compareWithOracle(const World& input, const World& output, double contrast, double brightness) {
    Differences differences;
    for (int y = 0; y < output.height(); ++y) {
        for (int x = 0; x < output.width(); ++x) {
            std::array<Range, 4> expected{};
            if (x < input.width() && y < input.height()) {
                const std::array<int, 4> source = channels(input.pixel<PF_Pixel8>(x, y));
                expected[0] = {source[0], source[0]};
                for (std::size_t i = 1; i < 4; ++i)
                    expected[i] = correctedColour(source[i], source[0], contrast, brightness, offCentreOf(input));
            }
            differences.compare(x, y, channels(output.pixel<PF_Pixel8>(x, y)), expected);
        }
    }
    return differences.text();
}

std::string comparePixels(const World& expected, const World& actual) {
    if (expected.width() != actual.width() || expected.height() != actual.height())
        return "the sizes differ";
    Differences differences;
    for (int y = 0; y < actual.height(); ++y) {
        for (int x = 0; x < actual.width(); ++x) {
            std::array<Range, 4> wanted{};
            const std::array<int, 4> values = channels(expected.pixel<PF_Pixel8>(x, y));
            std::transform(values.begin(), values.end(), wanted.begin(), [](int value) { return Range{value, value}; });
            differences.compare(x, y, channels(actual.pixel<PF_Pixel8>(x, y)), wanted);
        }
    }
    return differences.text();
}

} // namespace Ombrique::Tests
