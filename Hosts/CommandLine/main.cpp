#include "Hosts/CommandLine/About.h"
#include "Hosts/CommandLine/Arguments.h"
#include "Hosts/CommandLine/Failure.h"
#include "Hosts/CommandLine/RenderStill.h"
#include "Hosts/CommandLine/StandardStreams.h"
#include "Hosts/Engine/BundleLocation.h"
#include "Hosts/Engine/Effect.h"
#include "Platform/OpenGL/DriverLimits.h"

#include <limits>
#include <malloc.h>
#include <new>

namespace Ombrique::Hosts {
namespace {

enum ExitStatus { kDone = 0, kFailed = 1, kWrongCommandLine = 2 };

/// Pictures are freed and asked for again at the same sizes. As the C library comes, it gives blocks of 32 MiB and more
/// back to the system each time, and maps and clears them anew.
void keepFreedMemory() {
    mallopt(M_MMAP_THRESHOLD, 1 << 30);
    mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());
}

void setUp(Effect& effect) {
    if (const CommandResult result = effect.setUp(); !result.clean())
        throw PluginFailure("the plug-in can't be set up: " + result.describe());
}

int run(int count, const char* const* words, StandardStreams& streams) {
    const PluginBundle bundle(bundleLocation("/proc/self/exe", {OMBRIQUE_BUNDLE_BUILT, OMBRIQUE_BUNDLE_INSTALLED}));
    Effect effect(bundle);
    setUp(effect);
    const std::vector<SliderOption> sliders = sliderOptions(effect.parameters());
    const Arguments arguments = parseArguments(count, words, sliders);
    if (!arguments.answer.empty()) {
        streams.printResult(arguments.answer);
        return kDone;
    }
    if (arguments.about) {
        streams.printResult(aboutText(effect, sliders));
        streams.releaseLibraryText();
        return kDone;
    }
    const int longestSide = longestRenderableSide();
    if (longestSide == 0)
        throw Failure("OpenGL: no driver on this machine gives a context of version 3.3 or more");
    for (const std::string& loss :
         renderStill(effect, arguments.input, arguments.output, arguments.values, longestSide))
        streams.printMessage("ombrique-render: note: " + loss + "\n");
    streams.releaseLibraryText();
    return kDone;
}

int runGuarded(int count, const char* const* words) {
    StandardStreams streams;
    const auto fail = [&](ExitStatus status, const std::string& text) {
        streams.printMessage("ombrique-render: " + text + "\n");
        return status;
    };
    try {
        return run(count, words, streams);
    } catch (const UsageError& error) {
        return fail(kWrongCommandLine, error.what());
    } catch (const PluginFailure& error) {
        streams.releaseLibraryText();
        return fail(kFailed, error.what());
    } catch (const std::bad_alloc&) {
        return fail(kFailed, "there is not enough memory");
    } catch (const std::exception& error) {
        return fail(kFailed, error.what());
    }
}

} // namespace
} // namespace Ombrique::Hosts

int main(int count, char** words) {
    Ombrique::Hosts::keepFreedMemory();
    return Ombrique::Hosts::runGuarded(count, words);
}
