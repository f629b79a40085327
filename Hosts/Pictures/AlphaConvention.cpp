#include "Hosts/Pictures/AlphaConvention.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

namespace Ombrique::Hosts {

AlphaConvention alphaConvention(const std::string& format, bool declaredStraight) {
    // These hold straight colours by their own rules, whether or not OpenImageIO says so.
    static constexpr std::array<std::string_view, 8> kStraight = {"png", "targa", "jpeg2000", "ico",
                                                                  "bmp", "heif",  "gif",      "psd"};
    if (format == "webp")
        return AlphaConvention::GammaAssociated;
    if (std::ranges::find(kStraight, format) != kStraight.end())
        return AlphaConvention::Straight;
    return declaredStraight ? AlphaConvention::Straight : AlphaConvention::Associated;
}

float colourWeight(AlphaConvention convention, float alpha) {
    switch (convention) {
    case AlphaConvention::Straight:
        return 1.0f;
    case AlphaConvention::Associated:
        return alpha;
    case AlphaConvention::GammaAssociated:
        return std::pow(alpha, 1.0f / 2.2f);
    }
    return 1.0f;
}

bool declaresAlphaConvention(const std::string& format) { return format == "tiff"; }

} // namespace Ombrique::Hosts
