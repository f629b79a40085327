#pragma once

#include <filesystem>

namespace Ombrique::Hosts {

/// The plug-in's bundle: what the environment variable OMBRIQUE_PLUGIN_PATH names, or else the one beside the running
/// program, or where the build puts it as seen from there. Whether it is a good one shows when it is loaded.
std::filesystem::path bundleLocation();

} // namespace Ombrique::Hosts
