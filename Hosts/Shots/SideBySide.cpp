#include "Hosts/Shots/SideBySide.h"

#include <algorithm>

namespace Ombrique::Hosts {

World sideBySide(const World& left, const World& right, PictureOrigin& origin) {
    const int half = std::max(1, left.width() / 640);
    World both(left.width() + 2 * half + right.width(), left.height());
    for (int y = 0; y < both.height(); ++y) {
        const auto* before = reinterpret_cast<const PF_Pixel8*>(left.row(y));
        const auto* after = reinterpret_cast<const PF_Pixel8*>(right.row(y));
        auto* to = std::copy_n(before, left.width(), reinterpret_cast<PF_Pixel8*>(both.row(y)));
        to = std::fill_n(to, half, PF_Pixel8{255, 0, 0, 0});
        to = std::fill_n(to, half, PF_Pixel8{255, 255, 255, 255});
        std::copy_n(after, right.width(), to);
    }
    OIIO::ImageSpec& spec = origin.spec;
    spec.x = spec.y = spec.full_x = spec.full_y = 0;
    spec.width = spec.full_width = both.width();
    spec.height = spec.full_height = both.height();
    return both;
}

} // namespace Ombrique::Hosts
