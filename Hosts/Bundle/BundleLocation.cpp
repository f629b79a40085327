#include "Hosts/Bundle/BundleLocation.h"

#include "Hosts/Bundle/BundleError.h"

#include <cstdlib>
#include <vector>

namespace Ombrique::Hosts {

namespace {

constexpr const char* kBundle = "OmbriqueContrast.plugin";

bool isFolder(const std::filesystem::path& path) {
    std::error_code error;
    return std::filesystem::is_directory(path, error);
}

/// The one bundle that `folder` holds; `folder` itself where it holds none.
std::filesystem::path onlyBundleIn(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> bundles;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(folder, error))
        if (entry.path().extension() == ".plugin" && isFolder(entry.path()))
            bundles.push_back(entry.path());
    if (bundles.size() > 1)
        throw BundleError(folder.string() + ": holds several plug-in bundles, " + bundles[0].filename().string() +
                          " and " + bundles[1].filename().string() + " among them: name one");
    return bundles.empty() ? folder : bundles.front();
}

} // namespace

std::filesystem::path bundleLocation(const std::filesystem::path& hostFile, std::initializer_list<const char*> places) {
    if (const char* text = std::getenv("OMBRIQUE_PLUGIN_PATH"); text && *text) {
        const std::filesystem::path named = text;
        return isFolder(named / kBundle) ? named / kBundle : onlyBundleIn(named);
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
