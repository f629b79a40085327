#pragma once

#include "Hosts/Engine/World.h"

#include <cstdint>

/// Between a tool's frames and the host's worlds. A frame of frei0r (RGBA8888) has red, green, blue and straight alpha
/// in each four bytes, its rows follow each other without padding, and the top row comes first. A world has alpha
/// first. Nothing is lost either way. Frames must be as large as their worlds, of 8 bits a channel, and needn't be
/// aligned.
namespace Ombrique::Hosts {

void copyToWorld(const std::uint32_t* frame, World& world);
void copyToFrame(const World& world, std::uint32_t* frame);

} // namespace Ombrique::Hosts
