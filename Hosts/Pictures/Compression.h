#pragma once

#include "Hosts/Engine/World.h"

#include <OpenImageIO/imageio.h>

#include <string>

namespace Ombrique::Hosts {

/// Throws where `wanted`, "METHOD" or "METHOD:LEVEL", is none of the compression methods of OpenImageIO's format
/// `format`. Empty is always fine.
void requireCompression(const std::string& wanted, const std::string& format);

/// Describes to the encoder of `format` how to compress: as `wanted`, or where that is empty, as `spec` has it already;
/// PNG, whose files don't tell how they were compressed, then gets what is quickest for `pixels`.
void setCompression(OIIO::ImageSpec& spec, const std::string& wanted, const std::string& format, const World& pixels);

} // namespace Ombrique::Hosts
