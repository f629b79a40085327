#pragma once

#include "Hosts/Engine/World.h"

#include <OpenImageIO/imageio.h>

#include <string>

namespace Ombrique::Tests {

/// How a test writes a picture, and what it expects to find again.
struct PictureForm {
    /// 1 grey, 2 grey and alpha, 3 RGB, 4 RGBA.
    int channels = 4;
    OIIO::TypeDesc depth = OIIO::TypeDesc::UINT8;
    /// Whether the file holds colours that are multiplied by alpha.
    bool associated = false;
};

/// Writes the picture with the file's bytes under the test's control: OpenImageIO is asked to convert nothing. Samples
/// deeper than 8 bits hold the 8-bit values exactly. `metadata` is a description to start from.
void writeTestPicture(const std::string& path, const Hosts::World& picture, const PictureForm& form,
                      OIIO::ImageSpec metadata = {});

/// Reads a picture that has `form`, as it stands in the file, into straight colours. Fails the test where the file has
/// another form than that, its depth excepted.
Hosts::World readTestPicture(const std::string& path, const PictureForm& form);

/// The picture with equal colours, and with full alpha, as far as a form can't hold more.
Hosts::World asHeld(const Hosts::World& picture, const PictureForm& form);

} // namespace Ombrique::Tests
