#pragma once

#include <OpenImageIO/imageio.h>

#include <cstdint>
#include <filesystem>
#include <functional>

namespace Ombrique::Hosts {

/// Reads the pixels of a plain PNG file: 8 bits a channel, grey or RGB, with alpha or without, not interlaced, no
/// colour made transparent. It takes less than half of the time that libpng does. `spec` is what OpenImageIO says of
/// the file, whose size the caller has bounded. Calls `take(y, samples)` for each row from the top on; the samples hold
/// until it returns.
///
/// Returns false for any other kind of file, and for one with the least thing wrong: then OpenImageIO is to read it,
/// or to say what is wrong; rows may have been taken already. Memory: the compressed pixels and all rows.
/// @throw std::bad_alloc.
bool readPlainPng(const std::filesystem::path& path, const OIIO::ImageSpec& spec,
                  const std::function<void(int, const std::uint8_t*)>& take);

} // namespace Ombrique::Hosts
