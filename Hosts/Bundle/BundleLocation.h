#pragma once

#include <filesystem>
#include <initializer_list>

namespace Ombrique::Hosts {

/// The plug-in's bundle: what the environment variable OMBRIQUE_PLUGIN_PATH names (a bundle, or a folder that holds
/// OmbriqueContrast.plugin or one other bundle, NAME.plugin), or else the one in the folder of `hostFile`, or in the
/// first of `places` that has one. Places are folders, seen from that of `hostFile`: where the build puts the bundle,
/// and where it is installed (ombrique_bundle_host in CMake gives both). Where there is none, the place beside
/// `hostFile`. Whether it is a good bundle shows when it is loaded.
///
/// @throw BundleError where the variable names a folder with several bundles, none of which is OmbriqueContrast.plugin.
///
/// `hostFile` is the file of the program or library that acts as host; symbolic links to it are followed.
std::filesystem::path bundleLocation(const std::filesystem::path& hostFile,
                                     std::initializer_list<const char*> places = {});

} // namespace Ombrique::Hosts
