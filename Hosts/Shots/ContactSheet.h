#pragma once

#include "Hosts/Engine/Effect.h"
#include "Hosts/Engine/Slider.h"
#include "Hosts/Pictures/OutputFile.h"

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace Ombrique::Hosts {

/// What a contact sheet is made of.
struct ContactSheet {
    std::filesystem::path input;
    std::filesystem::path output;
    /// Values to show, by parameter index. Of the first two sliders, one without a list gets five around its default; a
    /// third one and those behind it are the same in all pictures, and have one value or none.
    std::map<int, std::vector<double>> lists;
    /// See PictureWriter.
    std::string compression;
    /// The longest side of a picture that the driver can hold, in pixels.
    int longestSide = 0;
    OutputRules rules = {};
    /// See PictureReader.
    bool convertsColours = false;
};

/// Writes a contact sheet of a picture: its reduction under each pair of values of the first two sliders, with the
/// values below it, the first slider's from left to right and the second's from top to bottom. Transparent pictures lie
/// on grey. `effect` is set up. Returns what of the picture couldn't be kept, without the file's name.
/// @throw UsageError where a third slider has several values, Failure which names the file, with no sheet left behind.
std::vector<std::string> writeContactSheet(Effect& effect, const std::vector<Slider>& sliders,
                                           const ContactSheet& sheet);

} // namespace Ombrique::Hosts
