#pragma once

#include <filesystem>

namespace Ombrique::Hosts {

/// Makes sure that `file` is whole and made for this machine's kind of processor, as far as its ELF headers tell,
/// before the system's loader gets to see it: that one ends the process by SIGBUS when the part that it maps has been
/// cut off, and calls a binary for another processor a file that isn't there.
/// @throw BundleError where it isn't.
void requireLoadable(const std::filesystem::path& file);

} // namespace Ombrique::Hosts
