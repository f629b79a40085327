#include "Hosts/Engine/PluginBundle.h"

#include "Hosts/Engine/BinaryFile.h"
#include "Hosts/Engine/PropertyList.h"

#include <dlfcn.h>

namespace Ombrique::Hosts {

namespace {

#ifdef __SANITIZE_ADDRESS__
// An image that is gone hides what its statics, and the driver's, hold: that would count as leaked, in nameless stacks.
constexpr int kOpenMode = RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE;
#else
constexpr int kOpenMode = RTLD_NOW | RTLD_LOCAL;
#endif

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
    requireLoadable(file);
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
