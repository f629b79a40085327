#include "Hosts/Bundle/BundleLocation.h"
#include "Hosts/CommandLine/Arguments.h"
#include "Hosts/CommandLine/RunReport.h"
#include "Hosts/CommandLine/StandardStreams.h"
#include "Hosts/CommandLine/StopSignals.h"
#include "Hosts/Engine/Effect.h"
#include "Hosts/Pictures/Failure.h"
#include "Hosts/Shots/ContactSheet.h"
#include "Hosts/Shots/FrameRanges.h"
#include "Hosts/Shots/RenderShot.h"
#include "Platform/OpenGL/DriverLimits.h"

#include <algorithm>
#include <cstdlib>
#include <iomanip>
#include <limits>
#include <malloc.h>
#include <new>
#include <sstream>

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

/// The devices that can be chosen: "0 software, 1 ...".
std::string knownDevices() {
    std::string text;
    const std::vector<std::string> names = driverDevices();
    for (std::size_t number = 0; number < names.size(); ++number)
        text += (number > 0 ? ", " : "") + std::to_string(number) + " " + names[number];
    return text.empty() ? "none" : text;
}

/// The longest side of a picture that the driver can hold, in pixels.
int requireDriver() {
    const int longestSide = longestRenderableSide();
    const char* const chosen = std::getenv("OMBRIQUE_DEVICE");
    if (longestSide == 0)
        throw Failure(chosen && *chosen ? "OMBRIQUE_DEVICE " + std::string(chosen) +
                                              ": gives no context of OpenGL 3.3 or more (known: " + knownDevices() + ")"
                                        : "OpenGL: no driver on this machine gives a context of version 3.3 or more");
    return longestSide;
}

/// The plug-in's About text, a line for each slider, and what draws.
std::string aboutText(const Effect& effect, const std::vector<Slider>& sliders) {
    const CommandResult result = effect.about();
    if (!result.clean())
        throw PluginFailure(result.describe());
    // The host's dialogs break lines at a carriage return.
    std::string message = result.message;
    std::ranges::replace(message, '\r', '\n');
    std::ostringstream text;
    text << message << "\n\nParameters:\n" << std::left;
    for (const Slider& slider : sliders)
        text << "  " << std::setw(14) << "--" + slider.word() << std::setw(20) << slider.name << slider.describeRange()
             << "\n";
    const std::string driver = driverName();
    text << "\nOpenGL:\n  driver   " << (driver.empty() ? "none of version 3.3 or more" : driver) << "\n  devices  "
         << knownDevices() << "\n";
    return text.str();
}

/// Prints a line of frames, or nothing where none is missing.
void listMissing(const Shot& shot, StandardStreams& streams) {
    std::vector<int> numbers;
    for (const ShotFrame& frame : shot.frames)
        numbers.push_back(frame.number);
    if (!numbers.empty())
        streams.printResult(describeFrames(numbers) + "\n");
}

int renderFiles(Effect& effect, const Arguments& arguments, StandardStreams& streams) {
    const Shot shot = planShot(arguments.shot);
    if (arguments.listMissing) {
        listMissing(shot, streams);
        return kDone;
    }
    if (!shot.gaps.empty() && arguments.verbosity != Verbosity::Quiet)
        streams.printMessage({"ombrique-render: note: ", arguments.shot.input, ": ", shot.gaps, "\n"});
    const OutputRules rules{!arguments.noOverwrite, [] { return StopSignals::requested() != 0; }};
    const FrameSettings settings{arguments.values,      requireDriver(), arguments.compare,
                                 arguments.compression, rules,           arguments.convertsColours};
    setUp(effect);
    if (arguments.verbosity == Verbosity::Verbose)
        streams.releaseLibraryText();
    const StopSignals signals;
    RunReport report(streams, shot, arguments.verbosity);
    if (renderShot(effect, shot, settings, arguments.jobs, report))
        streams.releaseLibraryText();
    report.end(StopSignals::requested());
    return report.anyFailed() ? kFailed : kDone;
}

int renderSheet(Effect& effect, const std::vector<Slider>& sliders, const Arguments& arguments,
                StandardStreams& streams) {
    const ContactSheet sheet{firstInput(arguments.shot), arguments.sheet, arguments.lists,
                             arguments.compression,      requireDriver(), {!arguments.noOverwrite, {}},
                             arguments.convertsColours};
    setUp(effect);
    for (const std::string& loss : writeContactSheet(effect, sliders, sheet))
        if (arguments.verbosity != Verbosity::Quiet)
            streams.printMessage({"ombrique-render: note: ", arguments.shot.input, ": ", loss, "\n"});
    return kDone;
}

int run(int count, const char* const* words, StandardStreams& streams) {
    const PluginBundle bundle(bundleLocation("/proc/self/exe", {OMBRIQUE_BUNDLE_BUILT, OMBRIQUE_BUNDLE_INSTALLED}),
                              {OMBRIQUE_BUNDLE_IDENTIFIER, OMBRIQUE_BUNDLE_VERSION});
    const std::vector<Slider> sliders = declaredSliders(bundle);
    const Arguments arguments = parseArguments(count, words, bundle.registration(), sliders);
    if (!arguments.answer.empty()) {
        streams.printResult(arguments.answer);
        return kDone;
    }
    Effect effect(bundle);
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
