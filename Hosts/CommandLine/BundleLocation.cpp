#include "Hosts/CommandLine/BundleLocation.h"

#include <cstdlib>

namespace Ombrique::Hosts {

std::filesystem::path bundleLocation() {
    if (const char* named = std::getenv("OMBRIQUE_PLUGIN_PATH"); named && *named)
        return named;
    static constexpr const char* kBundle = "OmbriqueContrast.plugin";
    const std::filesystem::path folder = std::filesystem::read_symlink("/proc/self/exe").parent_path();
    const std::filesystem::path beside = folder / kBundle;
    if (std::filesystem::exists(beside))
        return beside;
    return (folder / "../../Plugins/Contrast" / kBundle).lexically_normal();
}

} // namespace Ombrique::Hosts
