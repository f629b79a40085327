#pragma once

#include "Hosts/Engine/World.h"

#include <OpenImageIO/imageio.h>

namespace Ombrique::Hosts {

/// How the pixels of a picture that its camera held otherwise come to stand upright: they are mirrored first, then rows
/// become columns.
struct Turn {
    bool mirrorsX = false;
    bool mirrorsY = false;
    bool exchanges = false;

    /// Whether there is anything to do.
    bool turns() const { return mirrorsX || mirrorsY || exchanges; }
    /// Fills `upright`, whose sides are those of `lying`, exchanged where the turn does so. 8 bits a channel.
    void apply(const World& lying, World& upright) const;
};

/// The turn that the description's "Orientation" asks for, as Exif numbers them from 1 to 8. Describes the upright
/// picture from here on: its windows keep their place to each other, and nothing asks for another turn.
Turn turnUpright(OIIO::ImageSpec& spec);

} // namespace Ombrique::Hosts
