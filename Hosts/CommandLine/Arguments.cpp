#include "Hosts/CommandLine/Arguments.h"

#include "Hosts/CommandLine/Failure.h"
#include "Hosts/CommandLine/FrameRanges.h"

#include <CLI/CLI.hpp>

namespace Ombrique::Hosts {

namespace {

constexpr const char* kDescription =
    "Corrects contrast and brightness of pictures and shots through the Ombrique Contrast plug-in.";

constexpr const char* kFooter = R"(
A shot is named by a pattern, with #### or @@@@ or %04d in the place of the frame's number. A slider takes a number, or
keys, FRAME:VALUE,FRAME:VALUE, with straight lines between them; for a contact sheet, a list of numbers.

Any format that OpenImageIO reads and writes will do; the extension of OUTPUT tells which. An existing OUTPUT is
replaced only by a finished picture, so that a run can be repeated whenever it was cut off. Results go to standard
output, all else to standard error.

Examples:
  ombrique-render photo.png corrected.png --contrast 1.4 --brightness 5
  ombrique-render plate.exr preview.jpg --brightness -12 --compare
  ombrique-render photo.png --sheet choices.png --contrast 0.8,1,1.2,1.4
  ombrique-render shot.####.exr out/shot.####.png --frames 1001-1240 --skip-existing
  ombrique-render shot.%04d.png out.%04d.png --contrast 1001:1,1120:1.6,1240:1

Environment:
  OMBRIQUE_PLUGIN_PATH   the plug-in's bundle, instead of the one that belongs to the program

Exit status:
  0  done
  1  something could not be read, rendered or written; the other frames of a shot are done all the same
  2  wrong command line
  A run that SIGINT or SIGTERM stops finishes the frames that are under way, and ends by that signal.)";

/// The command line as text: numbers are read later, so that a wrong one is told apart from a wrong command line.
struct Texts {
    std::optional<std::string> frames;
    std::optional<std::string> part;
    std::map<int, std::optional<std::string>> sliders;
    bool quiet = false;
    bool verbose = false;
};

void addOptions(CLI::App& app, Arguments& arguments, Texts& texts, const std::vector<SliderOption>& sliders) {
    app.add_option("INPUT", arguments.input, "The picture to correct, or the pattern of a shot");
    app.add_option("OUTPUT", arguments.output, "Where the corrected picture or shot goes");
    for (const SliderOption& slider : sliders)
        app.add_option(slider.option, texts.sliders[slider.index], slider.label + ": " + slider.describeRange())
            ->type_name("X");
    app.add_option("--frames", texts.frames,
                   "The frames to render, as 1-10,20-30 or 1-100x2; all that are there if not given")
        ->type_name("RANGES");
    app.add_option("--part", texts.part, "Of these frames, the K-th of N equal parts, for several machines to share")
        ->type_name("K/N");
    app.add_flag("--skip-existing", arguments.skipExisting, "Leave out frames whose output is there already");
    app.add_flag("--list-missing", arguments.listMissing,
                 "Print the frames whose output isn't there yet, as --frames takes them, and render nothing");
    app.add_option("--jobs", arguments.jobs, "Frames under way at a time; one more than there are cores if not given")
        ->type_name("N")
        ->check(CLI::Range(1, 256));
    app.add_flag("--compare", arguments.compare, "Write before and after side by side");
    app.add_option("--sheet", arguments.sheet,
                   "Write a contact sheet of INPUT over lists of slider values, and no OUTPUT")
        ->type_name("FILE");
    app.add_option("--compression", arguments.compression,
                   "METHOD or METHOD:LEVEL, as the format of OUTPUT has them: zip, piz, jpeg:90, default:9 and so on")
        ->type_name("METHOD");
    auto* const quiet = app.add_flag("-q,--quiet", texts.quiet, "Say nothing but what went wrong");
    app.add_flag("-v,--verbose", texts.verbose, "Tell of each frame, and what the plug-in prints")->excludes(quiet);
    app.add_flag("--about", arguments.about, "Print what the plug-in says of itself, and its parameters");
}

void requireFiles(const Arguments& arguments) {
    if (arguments.about)
        return;
    if (arguments.input.empty())
        throw CLI::RequiredError("INPUT");
    if (arguments.sheet.empty() && arguments.output.empty())
        throw CLI::RequiredError("OUTPUT");
    if (!arguments.sheet.empty() &&
        (!arguments.output.empty() || arguments.compare || arguments.skipExisting || arguments.listMissing))
        throw CLI::ValidationError("--sheet", "goes with INPUT and the sliders alone");
}

} // namespace

Arguments parseArguments(int count, const char* const* words, const std::vector<SliderOption>& sliders) {
    Arguments arguments;
    Texts texts;
    CLI::App app(kDescription, "ombrique-render");
    app.footer(kFooter);
    app.set_version_flag("--version", "ombrique-render " OMBRIQUE_VERSION, "Print the version and exit");
    addOptions(app, arguments, texts, sliders);
    try {
        app.parse(count, words);
        requireFiles(arguments);
    } catch (const CLI::CallForHelp&) {
        arguments.answer = app.help();
        return arguments;
    } catch (const CLI::CallForVersion& version) {
        arguments.answer = std::string(version.what()) + "\n";
        return arguments;
    } catch (const CLI::ParseError& error) {
        throw UsageError(std::string(error.what()) + " (--help tells more)");
    }
    arguments.talk = texts.quiet ? Talk::Quiet : texts.verbose ? Talk::Verbose : Talk::Normal;
    if (texts.frames)
        arguments.frames = parseFrameRanges(*texts.frames);
    if (texts.part)
        arguments.part = parseFramePart(*texts.part);
    for (const SliderOption& slider : sliders) {
        const std::optional<std::string>& text = texts.sliders[slider.index];
        if (text && arguments.sheet.empty())
            arguments.values.emplace(slider.index, slider.parse(*text));
        else if (text)
            arguments.lists.emplace(slider.index, slider.parseList(*text));
    }
    return arguments;
}

} // namespace Ombrique::Hosts
