#include "Hosts/Frei0r/SharedEffect.h"

#include "Hosts/Bundle/BundleLocation.h"

#include <cstdio>
#include <cstdlib>
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

SharedEffect& SharedEffect::instance() {
    static SharedEffect* const effect = new SharedEffect;
    return *effect;
}

void SharedEffect::open() {
    const std::lock_guard lock(mMutex);
    load();
    ++mOpened;
}

void SharedEffect::close() {
    const std::lock_guard lock(mMutex);
    if (mOpened > 0)
        --mOpened;
    releaseThreadWhereUnused();
}

const EffectDescription& SharedEffect::description() {
    const std::lock_guard lock(mMutex);
    return load();
}

FrameThread& SharedEffect::enter() {
    const std::lock_guard lock(mMutex);
    load();
    if (!reclaimThread())
        mFrameThread = std::make_unique<FrameThread>(*mBundle);
    // Once the driver is loaded, so that this comes before the driver's own end.
    static const int atExit = std::atexit([] { instance().stayUntilExit(); });
    (void)atExit;
    ++mInstances;
    return *mFrameThread;
}

void SharedEffect::leave() {
    const std::lock_guard lock(mMutex);
    --mInstances;
    releaseThreadWhereUnused();
}

void SharedEffect::report(const char* text) noexcept { std::fprintf(stderr, "ombrique_contrast: %s\n", text); }

const EffectDescription& SharedEffect::load() {
    if (!mDescription) {
        mBundle.emplace(bundleLocation(moduleFile(), {OMBRIQUE_BUNDLE_BUILT, OMBRIQUE_BUNDLE_INSTALLED}),
                        KnownVersion{OMBRIQUE_BUNDLE_IDENTIFIER, OMBRIQUE_BUNDLE_VERSION});
        mDescription.emplace(*mBundle);
    }
    return *mDescription;
}

bool SharedEffect::reclaimThread() {
    // The next thread's set-up must not meet this one's set-down.
    if (mFrameThread && !mFrameThread->reclaim())
        mFrameThread.reset();
    return mFrameThread != nullptr;
}

void SharedEffect::releaseThreadWhereUnused() {
    if (mFrameThread && mOpened == 0 && mInstances == 0)
        mFrameThread->release();
}

void SharedEffect::stayUntilExit() {
    const std::lock_guard lock(mMutex);
    reclaimThread();
    ++mInstances;
}

} // namespace Ombrique::Hosts
