#include "Hosts/Pictures/Orientation.h"

#include <utility>

namespace Ombrique::Hosts {

void Turn::apply(const World& lying, World& upright) const {
    for (int y = 0; y < upright.height(); ++y)
        for (int x = 0; x < upright.width(); ++x) {
            const int column = exchanges ? y : x;
            const int row = exchanges ? x : y;
            upright.setPixel(x, y,
                             lying.pixel<PF_Pixel8>(mirrorsX ? lying.width() - 1 - column : column,
                                                    mirrorsY ? lying.height() - 1 - row : row));
        }
}

Turn turnUpright(OIIO::ImageSpec& spec) {
    const int number = spec.get_int_attribute("Orientation", 1);
    const Turn turn{number == 2 || number == 3 || number == 7 || number == 8,
                    number == 3 || number == 4 || number == 6 || number == 7, number >= 5 && number <= 8};
    if (!turn.turns())
        return turn;
    if (turn.mirrorsX)
        spec.x = 2 * spec.full_x + spec.full_width - spec.x - spec.width;
    if (turn.mirrorsY)
        spec.y = 2 * spec.full_y + spec.full_height - spec.y - spec.height;
    if (turn.exchanges) {
        std::swap(spec.x, spec.y);
        std::swap(spec.width, spec.height);
        std::swap(spec.full_x, spec.full_y);
        std::swap(spec.full_width, spec.full_height);
        if (const float aspect = spec.get_float_attribute("PixelAspectRatio"); aspect > 0.0f)
            spec.attribute("PixelAspectRatio", 1.0f / aspect);
    }
    spec.erase_attribute("Orientation");
    spec.erase_attribute("Exif:Pixel[XY]Dimension");
    return turn;
}

} // namespace Ombrique::Hosts
