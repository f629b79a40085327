#pragma once

#include "Hosts/CommandLine/Picture.h"

#include <filesystem>
#include <memory>

namespace Ombrique::Hosts {

/// Reads one picture of any format that OpenImageIO knows. Of a file with several pictures it takes the first, of a
/// texture the largest level. All failures are thrown as Failure and name the file.
class PictureReader {
public:
    /// Opens the file and reads its header.
    explicit PictureReader(const std::filesystem::path& path);

    /// The size of the data window, in pixels.
    int width() const { return mOrigin.spec.width; }
    int height() const { return mOrigin.spec.height; }

    /// Reads the pixels; once. A file that ends too early, or is damaged on the way, is refused whole.
    Picture read();

private:
    template <typename Sample> std::vector<Sample> readSamples(int firstChannel, int endChannel);
    void chooseChannels();
    void noteLosses();

    std::filesystem::path mPath;
    std::unique_ptr<OIIO::ImageInput> mFile;
    PictureOrigin mOrigin;
};

} // namespace Ombrique::Hosts
