#pragma once

#include "Hosts/Pictures/OutputFile.h"
#include "Hosts/Pictures/Picture.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>

namespace Ombrique::Hosts {

/// Writes one picture to a file, whole or not at all (see OutputFile). All failures are thrown as Failure and name the
/// file.
class PictureWriter {
public:
    /// Finds the format by the extension, and makes sure that the file can be written, before anything is rendered.
    /// `compression` is one of the format's methods as OpenImageIO names them, with a level behind a colon where it has
    /// one ("zip", "jpeg:90", "default:9"); where it is empty, the picture's own method is kept where the format stays
    /// the same, and PNG gets one of its own, for speed.
    explicit PictureWriter(const std::filesystem::path& path, const std::string& compression = {},
                           const OutputRules& rules = {});
    PictureWriter(const PictureWriter&) = delete;
    PictureWriter& operator=(const PictureWriter&) = delete;
    ~PictureWriter();

    /// Writes `pixels` (8 bits, straight alpha, the size of the origin's data window) as a picture of the kind that
    /// `origin` describes: grey, RGB, with alpha or without, with its metadata and windows, and alpha as the output's
    /// format has it; 8 bits a channel, or what the format has next to that. In a format without a display window, a
    /// picture that has one apart from its data fills that window, cropped or padded with black. In a format without
    /// alpha, a translucent picture is laid over black. Once.
    ///
    /// With `convertsColours`, sRGB becomes linear light in OpenEXR and HDR.
    ///
    /// Returns what of the picture couldn't be kept, one line each, without the file's name.
    std::vector<std::string> write(const World& pixels, const PictureOrigin& origin, bool convertsColours = false);

private:
    /// `packRows(y, rows, samples)` fills in the samples of so many rows from y on.
    using PackRows = std::function<void(int, int, std::uint8_t*)>;

    /// Fills the file through the encoder.
    void encode(const OIIO::ImageSpec& spec, const PackRows& packRows);
    bool encodeRows(const OIIO::ImageSpec& spec, const PackRows& packRows);

    std::filesystem::path mPath;
    std::string mCompression;
    /// What the encoder gets.
    OIIO::TypeDesc mSampleType = OIIO::TypeDesc::UINT8;
    OutputFile mFile;
    /// Encoders may still write while they end, so it outlives the encoder.
    DescriptorProxy mProxy;
    std::unique_ptr<OIIO::ImageOutput> mEncoder;
};

} // namespace Ombrique::Hosts
