#include "Hosts/CommandLine/About.h"
#include "Hosts/CommandLine/Arguments.h"
#include "Hosts/CommandLine/ContactSheet.h"
#include "Hosts/CommandLine/Failure.h"
#include "Hosts/CommandLine/FrameRanges.h"
#include "Hosts/CommandLine/RenderShot.h"
#include "Hosts/CommandLine/StandardStreams.h"
#include "Hosts/CommandLine/StopSignals.h"
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

int requireDriver() {
    const int longestSide = longestRenderableSide();
    if (longestSide == 0)
        throw Failure("OpenGL: no driver on this machine gives a context of version 3.3 or more");
    return longestSide;
}

/// Prints a line of frames, or nothing where none is missing.
void listMissing(const Shot& shot, StandardStreams& streams) {
    std::vector<int> numbers;
    for (const ShotFrame& frame : shot.frames)
        numbers.push_back(frame.number);
    if (!numbers.empty())
        streams.printResult(describeFrames(numbers) + "\n");
}

int renderFiles(const Effect& effect, const Arguments& arguments, StandardStreams& streams) {
    const Shot shot = planShot(arguments);
    if (arguments.listMissing) {
        listMissing(shot, streams);
        return kDone;
    }
    const FrameSettings settings{arguments.values, requireDriver(), arguments.compare, arguments.compression};
    if (arguments.talk == Talk::Verbose)
        streams.releaseLibraryText();
    const StopSignals signals;
    RunReport report(streams, shot, arguments.talk);
    if (renderShot(effect, shot, settings, arguments.jobs, report))
        streams.releaseLibraryText();
    report.end(StopSignals::requested());
    return report.anyFailed() ? kFailed : kDone;
}

int renderSheet(const Effect& effect, const std::vector<SliderOption>& sliders, const Arguments& arguments,
                StandardStreams& streams) {
    const ContactSheet sheet{firstInput(arguments), arguments.sheet, arguments.lists, arguments.compression,
                             requireDriver()};
    for (const std::string& loss : writeContactSheet(effect, sliders, sheet))
        if (arguments.talk != Talk::Quiet)
            streams.printMessage({"ombrique-render: note: ", arguments.input, ": ", loss, "\n"});
    return kDone;
}

int run(int count, const char* const* words, StandardStreams& streams) {
    const PluginBundle bundle(bundleLocation("/proc/self/exe", {OMBRIQUE_BUNDLE_BUILT, OMBRIQUE_BUNDLE_INSTALLED}),
                              {OMBRIQUE_BUNDLE_IDENTIFIER, OMBRIQUE_BUNDLE_VERSION});
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
    return arguments.sheet.empty() ? renderFiles(effect, arguments, streams)
                                   : renderSheet(effect, sliders, arguments, streams);
}

int runGuarded(int count, const char* const* words) {
    StandardStreams streams;
    const auto fail = [&](ExitStatus status, std::string_view text) {
        streams.printMessage({"ombrique-render: ", text, "\n"});
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
    const int status = Ombrique::Hosts::runGuarded(count, words);
    Ombrique::Hosts::StopSignals::obey();
    return status;
}
