#include "Hosts/Bundle/PluginBundle.h"

#include "Hosts/Bundle/PropertyList.h"

#include <cstring>
#include <dlfcn.h>
#include <fstream>
#include <link.h>

namespace Ombrique::Hosts {

namespace {

#ifdef __SANITIZE_ADDRESS__
// Memory that only the statics of an unloaded image point to would be reported as leaked, with stacks without names.
constexpr int kOpenMode = RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE;
#else
constexpr int kOpenMode = RTLD_NOW | RTLD_LOCAL;
#endif

/// The loader kills the process with SIGBUS where the end of a binary is missing. Linkers put the table of sections
/// there. All else that can be wrong with a binary, the loader tells.
void requireWhole(const std::filesystem::path& file) {
    ElfW(Ehdr) header{};
    std::ifstream stream(file, std::ios::binary);
    if (!stream.read(reinterpret_cast<char*>(&header), sizeof header) ||
        std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0)
        return;
    if (header.e_shoff + std::uint64_t{header.e_shnum} * header.e_shentsize > std::filesystem::file_size(file))
        throw BundleError(file.string() + ": damaged: part of the file is missing");
}

BundleInfo readInfo(const std::filesystem::path& folder, const KnownVersion& known) {
    const PropertyList list(folder / "Contents/Info.plist");
    BundleInfo info;
    info.identifier = list.string("CFBundleIdentifier");
    info.name = list.string("CFBundleName");
    info.executable = list.string("CFBundleExecutable");
    info.shortVersion = list.string("CFBundleShortVersionString");
    info.packageType = list.string("CFBundlePackageType");
    // A name that leads out of the bundle would load whatever lies there.
    if (std::filesystem::path(info.executable).filename() != info.executable)
        list.fail("CFBundleExecutable isn't a file name: " + info.executable);
    if (info.identifier == known.identifier && info.shortVersion != known.version)
        list.fail("CFBundleShortVersionString is " + info.shortVersion + ", and this program works with " +
                  known.version);
    return info;
}

Registration readRegistration(const std::filesystem::path& file) {
    const PropertyList list(file);
    if (const std::string kind = list.string("Kind"); kind != "Effect")
        list.fail("Kind is \"" + kind + "\", and only \"Effect\" is known");
    Registration registration;
    registration.name = list.string("Name");
    registration.author = list.stringOrEmpty("Author");
    registration.explanation = list.stringOrEmpty("Explanation");
    registration.category = list.string("Category");
    registration.matchName = list.string("MatchName");
    registration.entryPoint = list.string("EntryPoint");
    registration.version = list.integer("Version");
    registration.outFlags = static_cast<PF_OutFlags>(list.integer("OutFlags"));
    registration.outFlags2 = static_cast<PF_OutFlags2>(list.integer("OutFlags2"));
    return registration;
}

} // namespace

void PluginBundle::Unload::operator()(void* binary) const { dlclose(binary); }

PluginBundle::PluginBundle(const std::filesystem::path& folder, const KnownVersion& known) : mFolder(folder) {
    std::error_code error;
    if (!std::filesystem::is_directory(folder, error))
        throw BundleError(folder.string() + ": no such plug-in bundle");
    mInfo = readInfo(folder, known);
    mRegistration = readRegistration(registrationFile());

    const std::filesystem::path file = folder / "Contents/Linux" / mInfo.executable;
    requireWhole(file);
    mBinary.reset(dlopen(file.c_str(), kOpenMode));
    if (!mBinary)
        throw BundleError(file.string() + ": can't be loaded: " + dlerror());
    mEntryPoint = reinterpret_cast<PF_EntryPoint>(dlsym(mBinary.get(), mRegistration.entryPoint.c_str()));
    if (!mEntryPoint)
        throw BundleError(file.string() + ": has no entry point " + mRegistration.entryPoint);
}

std::filesystem::path PluginBundle::registrationFile() const {
    return mFolder / "Contents/Resources/Registration.plist";
}

} // namespace Ombrique::Hosts
