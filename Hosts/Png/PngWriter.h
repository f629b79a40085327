#pragma once

#include <OpenImageIO/filesystem.h>
#include <OpenImageIO/imageio.h>

#include <cstdint>
#include <filesystem>
#include <functional>

namespace Ombrique::Hosts {

/// Writes a PNG file of 8 bits a channel, with quick compression. Everything but the pixels is as OpenImageIO writes it
/// for `spec`. `packRows(y, rows, samples)` fills in the samples of so many rows from `y` on, which is spec.y at the
/// top. `file` takes the bytes in their order; whether it could, the caller asks it. `path` names it in errors.
/// @throw std::runtime_error, which names the file, where OpenImageIO writes no PNG for `spec`.
void writePng(const std::filesystem::path& path, const OIIO::ImageSpec& spec,
              const std::function<void(int, int, std::uint8_t*)>& packRows, OIIO::Filesystem::IOProxy& file);

} // namespace Ombrique::Hosts
