#include "Hosts/Frei0r/Module.h"

#include "Hosts/Engine/BundleLocation.h"

#include <cstdio>
#include <dlfcn.h>

namespace Ombrique::Hosts {

namespace {

/// The file that this code was loaded from.
std::filesystem::path moduleFile() {
    static const char anchor = 0;
    Dl_info info{};
    return dladdr(&anchor, &info) != 0 ? info.dli_fname : "";
}

} // namespace

Module& Module::instance() {
    static Module* const module = new Module;
    return *module;
}

void Module::open() {
    const std::lock_guard lock(mMutex);
    load();
    ++mOpened;
}

void Module::close() {
    const std::lock_guard lock(mMutex);
    if (mOpened > 0)
        --mOpened;
    endThreadWhereUnused();
}

const EffectDescription& Module::description() {
    const std::lock_guard lock(mMutex);
    return load();
}

FrameThread& Module::enter() {
    const std::lock_guard lock(mMutex);
    load();
    if (!mFrameThread)
        mFrameThread = std::make_unique<FrameThread>(*mBundle);
    ++mInstances;
    return *mFrameThread;
}

void Module::leave() {
    const std::lock_guard lock(mMutex);
    --mInstances;
    endThreadWhereUnused();
}

void Module::report(const char* text) noexcept { std::fprintf(stderr, "ombrique_contrast: %s\n", text); }

const EffectDescription& Module::load() {
    if (!mDescription) {
        mBundle.emplace(bundleLocation(moduleFile(), {OMBRIQUE_BUNDLE_BUILT, OMBRIQUE_BUNDLE_INSTALLED}),
                        KnownVersion{OMBRIQUE_BUNDLE_IDENTIFIER, OMBRIQUE_BUNDLE_VERSION});
        mDescription = describeEffect(*mBundle);
    }
    return *mDescription;
}

void Module::endThreadWhereUnused() {
    // Under the lock: the next thread's set-up must not meet this one's set-down.
    if (mOpened == 0 && mInstances == 0)
        mFrameThread.reset();
}

} // namespace Ombrique::Hosts
