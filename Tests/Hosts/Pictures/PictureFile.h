#pragma once

#include "Hosts/Engine/World.h"

#include <OpenImageIO/imageio.h>

#include <string>

namespace Ombrique::Tests {

/// How a test writes a picture, and what it expects to find again.
struct PictureForm {
    /// The names of the channels, a letter each: "Y" grey, "YA", "RGB", "RGBA". Others hold 0.5 throughout.
    std::string channels = "RGBA";
    OIIO::TypeDesc depth = OIIO::TypeDesc::UINT8;
    /// Whether the file holds colours that are multiplied by alpha.
    bool associated = false;
};

/// Writes the picture with the file's bytes under the test's control: OpenImageIO is asked to convert nothing. Samples
/// deeper than 8 bits hold the 8-bit values exactly. `metadata` is a description to start from, with the place of the
/// picture and its display window.
void writePictureFile(const std::string& path, const Hosts::World& picture, const PictureForm& form,
                      OIIO::ImageSpec metadata = {});

/// Reads a picture that has `form`, as it stands in the file, into straight colours. Fails the test where the file has
/// another form than that, its depth excepted.
Hosts::World readPictureFile(const std::string& path, const PictureForm& form);

/// What a file says of its picture. Fails the test where there is none.
OIIO::ImageSpec describePictureFile(const std::string& path);

/// The picture with equal colours, and with full alpha, as far as a form can't hold more.
Hosts::World asHeld(const Hosts::World& picture, const PictureForm& form);

} // namespace Ombrique::Tests
