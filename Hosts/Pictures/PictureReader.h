#pragma once

#include "Hosts/Pictures/Orientation.h"
#include "Hosts/Pictures/Picture.h"

#include <OpenImageIO/color.h>

#include <cstddef>
#include <filesystem>
#include <memory>
#include <vector>

namespace Ombrique::Hosts {

/// Reads one picture of any format that OpenImageIO knows. Of a file with several pictures it takes the first, of a
/// texture the largest level. A picture that its camera held otherwise is turned upright. All failures are thrown as
/// Failure and name the file, but std::bad_alloc where memory runs out.
class PictureReader {
public:
    /// Opens the file and reads its header. A picture with a side beyond `longestSide` pixels, the driver's limit, is
    /// refused before memory is asked for. With `convertsColours`, read() converts the file's colour space to sRGB.
    PictureReader(const std::filesystem::path& path, int longestSide, bool convertsColours = false);

    /// The size of the data window, in pixels.
    int width() const { return mOrigin.spec.width; }
    int height() const { return mOrigin.spec.height; }

    /// What the file says of itself; of what doesn't come along, some is known only once the pixels are read.
    const PictureOrigin& origin() const { return mOrigin; }

    /// Reads the pixels into a world of the picture's size; once. A file that ends too early, or is damaged on the way,
    /// is refused whole; the world's contents are then unspecified.
    void read(World& into);

private:
    template <typename Sample> bool readRows(int top, int rows, int firstChannel, int endChannel, Sample* samples);
    template <typename Sample> void readAs(World& into, int firstChannel, int endChannel);
    /// The pixels as the file has them, before they are turned.
    void readAsFiled(World& into);
    void requireFitting(int longestSide) const;
    /// OpenImageIO ends the process where it is asked to convert anything else.
    void requireNumbers() const;
    void chooseChannels();
    void noteLosses();
    void prepareConversion();

    std::filesystem::path mPath;
    std::unique_ptr<OIIO::ImageInput> mFile;
    PictureOrigin mOrigin;
    Turn mTurn;
    /// To sRGB; null where there is nothing to convert.
    OIIO::ColorProcessorHandle mConversion;
    /// Samples as the file has them, on their way to another type.
    std::vector<std::byte> mNative;
};

} // namespace Ombrique::Hosts
