#pragma once

#include "Hosts/CommandLine/DescriptorProxy.h"
#include "Hosts/CommandLine/OutputFile.h"
#include "Hosts/CommandLine/Picture.h"

#include <cstdint>
#include <filesystem>
#include <memory>

namespace Ombrique::Hosts {

/// Writes one picture to a file, whole or not at all (see OutputFile). All failures are thrown as Failure and name the
/// file.
class PictureWriter {
public:
    /// Finds the format by the extension, and makes sure that the file can be written, before anything is rendered.
    explicit PictureWriter(const std::filesystem::path& path);

    /// Writes `pixels` (8 bits, straight alpha, the size of the origin's data window) as a picture of the kind that
    /// `origin` describes: grey, RGB, with alpha or without, with its metadata and windows, and alpha as the output's
    /// format has it; 8 bits a channel, or what the format has next to that. In a format without a display window, a
    /// picture that has one apart from its data fills that window, cropped or padded with black. In a format without
    /// alpha, a translucent picture is laid over black. Once.
    ///
    /// Returns what of the picture couldn't be kept, one line each, without the file's name.
    std::vector<std::string> write(const World& pixels, const PictureOrigin& origin);

private:
    /// Fills the file through the encoder.
    void encode(const OIIO::ImageSpec& spec, const std::vector<std::uint8_t>& samples);

    std::filesystem::path mPath;
    OutputFile mFile;
    /// Encoders may still write while they end, so it outlives the encoder.
    DescriptorProxy mProxy;
    std::unique_ptr<OIIO::ImageOutput> mEncoder;
};

} // namespace Ombrique::Hosts
