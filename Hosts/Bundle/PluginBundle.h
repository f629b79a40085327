#pragma once

#include "Hosts/Bundle/BundleError.h"
#include "Platform/HostInterface/HostInterface.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

namespace Ombrique::Hosts {

/// What a bundle's Contents/Resources/Registration.plist tells a host before any code of the plug-in runs: one
/// dictionary with the keys Kind ("Effect"), Name, Category, MatchName and EntryPoint (strings), Version, OutFlags and
/// OutFlags2 (integers of 32 bits). Author and Explanation (strings), for people who choose among effects, may be
/// missing.
struct Registration {
    std::string name;
    std::string category;
    std::string author;
    std::string explanation;
    std::string matchName;
    /// The symbol of the entry point, unmangled.
    std::string entryPoint;
    std::uint32_t version = 0;
    PF_OutFlags outFlags = 0;
    PF_OutFlags2 outFlags2 = 0;
};

/// What a bundle's Contents/Info.plist tells, all of it strings.
struct BundleInfo {
    std::string identifier;   ///< CFBundleIdentifier
    std::string name;         ///< CFBundleName
    std::string executable;   ///< CFBundleExecutable, a file name in Contents/Linux
    std::string shortVersion; ///< CFBundleShortVersionString
    std::string packageType;  ///< CFBundlePackageType
};

/// The version of a plug-in that a host was made with. Bundles with another identifier are other plug-ins, and have
/// versions of their own.
struct KnownVersion {
    std::string identifier;
    std::string version; ///< As in BundleInfo::shortVersion.
};

/// A plug-in in memory: a bundle folder whose property lists were read and whose binary is loaded. Loading runs the
/// binary's static initialisers, and no command. Two bundles may be loaded at once; the same folder loaded twice is one
/// image, a copy of it in another place is a second. The destructor unloads the binary: whatever uses the plug-in (an
/// Effect) must have ended.
class PluginBundle {
public:
    /// Loads the bundle at `folder`.
    /// @throw BundleError where a file is missing, unreadable or damaged, a key is missing or of the wrong type, the
    /// bundle is the one that `known` names but of another version, the binary can't be loaded, or it lacks the entry
    /// point that the registration names.
    explicit PluginBundle(const std::filesystem::path& folder, const KnownVersion& known = {});

    const std::filesystem::path& folder() const { return mFolder; }
    /// The file that the registration was read from, for messages.
    std::filesystem::path registrationFile() const;
    const BundleInfo& info() const { return mInfo; }
    const Registration& registration() const { return mRegistration; }
    PF_EntryPoint entryPoint() const { return mEntryPoint; }

private:
    struct Unload {
        void operator()(void* binary) const;
    };

    std::filesystem::path mFolder;
    BundleInfo mInfo;
    Registration mRegistration;
    std::unique_ptr<void, Unload> mBinary;
    PF_EntryPoint mEntryPoint = nullptr;
};

} // namespace Ombrique::Hosts
