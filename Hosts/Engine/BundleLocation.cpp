#include "Hosts/Engine/BundleLocation.h"

#include <cstdlib>

namespace Ombrique::Hosts {

namespace {

constexpr const char* kBundle = "OmbriqueContrast.plugin";

bool isFolder(const std::filesystem::path& path) {
    std::error_code error;
    return std::filesystem::is_directory(path, error);
}

} // namespace

std::filesystem::path bundleLocation(const std::filesystem::path& hostFile, std::initializer_list<const char*> places) {
    if (const char* text = std::getenv("OMBRIQUE_PLUGIN_PATH"); text && *text) {
        const std::filesystem::path named = text;
        return isFolder(named / kBundle) ? named / kBundle : named;
    }
    std::error_code error;
    const std::filesystem::path folder = std::filesystem::weakly_canonical(hostFile, error).parent_path();
    std::filesystem::path beside = folder / kBundle;
    if (isFolder(beside))
        return beside;
    for (const char* place : places)
        if (std::filesystem::path found = (folder / place / kBundle).lexically_normal(); isFolder(found))
            return found;
    return beside;
}

} // namespace Ombrique::Hosts
