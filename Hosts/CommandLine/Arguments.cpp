#include "Hosts/CommandLine/Arguments.h"

#include "Hosts/Pictures/Failure.h"
#include "Hosts/Shots/Keyframes.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <optional>
#include <sstream>

namespace Ombrique::Hosts {

namespace {

constexpr const char* kShots = R"(
A shot is named by a pattern, with #### or @@@@ or %04d in the place of the frame's number. A slider takes a number, or
keys, FRAME:VALUE,FRAME:VALUE, with straight lines between them; for a contact sheet, a list of numbers.

Most formats that OpenImageIO reads and writes will do; the extension of OUTPUT tells which, and what would come out
wrong is refused. An existing OUTPUT is replaced only by a finished picture, so that a run can be repeated whenever it
was cut off. Results go to standard output, all else to standard error.

Examples:
)";

constexpr const char* kEnvironment = R"(
Environment:
  OMBRIQUE_PLUGIN_PATH   the plug-in's bundle, instead of the one that belongs to the program
  OMBRIQUE_DEVICE        the EGL device that draws: its number, or a part of its name, as --about lists them

Exit status:
  0  done
  1  something could not be read, rendered or written; the other frames of a shot are done all the same
  2  wrong command line
  A run that SIGINT or SIGTERM stops finishes the frames that are under way, and ends by that signal.)";

/// " --contrast 1.4" for the format "%": each % is the slider's default, moved by so many shares of its range. Nothing
/// where there is no such slider.
std::string exampleOption(const std::vector<Slider>& sliders, std::size_t place, std::string_view format,
                          std::initializer_list<double> shares) {
    if (place >= sliders.size())
        return {};
    const Slider& slider = sliders[place];
    std::ostringstream text;
    text << " --" << slider.word() << " ";
    const double* share = shares.begin();
    for (const char letter : format)
        if (letter == '%')
            text << slider.defaultValue + *share++ * (slider.maximum - slider.minimum);
        else
            text << letter;
    return text.str();
}

std::string footer(const std::vector<Slider>& sliders) {
    const std::string program = "  ombrique-render ";
    return kShots + program + "photo.png corrected.png" + exampleOption(sliders, 0, "%", {0.04}) +
           exampleOption(sliders, 1, "%", {0.025}) + "\n" + program + "plate.exr preview.jpg" +
           exampleOption(sliders, 1, "%", {-0.06}) + " --compare\n" + program + "photo.png --sheet choices.png" +
           exampleOption(sliders, 0, "%,%,%,%", {-0.02, 0.0, 0.02, 0.04}) + "\n" + program +
           "shot.####.exr out/shot.####.png --frames 1001-1240 --skip-existing\n" + program +
           "shot.%04d.png out.%04d.png" + exampleOption(sliders, 0, "1001:%,1120:%,1240:%", {0.0, 0.06, 0.0}) + "\n" +
           kEnvironment;
}

/// The command line as text: numbers are read later, so that a wrong one is told apart from a wrong command line.
struct Texts {
    std::vector<std::string> files;
    std::optional<std::string> frames;
    std::optional<std::string> part;
    std::map<int, std::optional<std::string>> sliders;
    bool quiet = false;
    bool verbose = false;
};

void addOptions(CLI::App& app, Arguments& arguments, Texts& texts, const std::vector<Slider>& sliders) {
    app.add_option("FILE", texts.files,
                   "INPUT, the picture to correct or the pattern of a shot, and OUTPUT, where it goes; with --into, "
                   "pictures to correct");
    app.add_option("--into", arguments.shot.into, "The folder that many pictures go into, each under its own name")
        ->type_name("FOLDER");
    app.add_option("--format", arguments.shot.format, "With --into, the extension that the outputs get, as png")
        ->type_name("EXTENSION");
    for (const Slider& slider : sliders)
        app.add_option("--" + slider.word(), texts.sliders[slider.index], slider.name + ": " + slider.describeRange())
            ->type_name("X");
    app.add_option("--frames", texts.frames,
                   "The frames to render, as 1-10,20-30 or 1-100x2; all that are there if not given")
        ->type_name("RANGES");
    app.add_option("--part", texts.part, "Of these frames, the K-th of N equal parts, for several machines to share")
        ->type_name("K/N");
    app.add_flag("--skip-existing", arguments.shot.skipExisting, "Leave out frames whose output is there already");
    app.add_flag("-n,--no-overwrite", arguments.noOverwrite, "Leave an OUTPUT that is there already, as a failure");
    app.add_flag("--list-missing", arguments.listMissing,
                 "Print the frames whose output isn't there yet, as --frames takes them, and render nothing");
    app.add_option(
           "--jobs", arguments.jobs,
           "Frames under way at a time; if not given, one more than there are cores, within a quarter of the memory")
        ->type_name("N")
        ->check(CLI::Range(1, 256));
    app.add_flag("--compare", arguments.compare, "Write before and after side by side");
    app.add_option("--sheet", arguments.sheet,
                   "Write a contact sheet of INPUT over lists of slider values, and no OUTPUT")
        ->type_name("FILE");
    app.add_flag("--autocc", arguments.convertsColours,
                 "Convert colours to sRGB for the effect, and to linear light for OpenEXR and HDR");
    app.add_option("--compression", arguments.compression,
                   "METHOD or METHOD:LEVEL, as the format of OUTPUT has them: zip, piz, jpeg:90, default:9 and so on")
        ->type_name("METHOD");
    auto* const quiet = app.add_flag("-q,--quiet", texts.quiet, "Say nothing but what went wrong");
    app.add_flag("-v,--verbose", texts.verbose, "Tell of each frame, and what the plug-in prints")->excludes(quiet);
    app.add_flag("--about", arguments.about, "Print what the plug-in says of itself, its parameters, and what draws");
}

/// Gives the files their parts, and requires all that are needed.
void assignFiles(Arguments& arguments, const std::vector<std::string>& files, bool framesAreGiven) {
    ShotRequest& shot = arguments.shot;
    if (arguments.about)
        return;
    if (files.empty())
        throw CLI::RequiredError("INPUT");
    if (std::ranges::find(files, "") != files.end())
        throw CLI::ValidationError("FILE", "a file's name is empty");
    if (!arguments.sheet.empty() &&
        (files.size() > 1 || arguments.compare || shot.skipExisting || arguments.listMissing || !shot.into.empty()))
        throw CLI::ValidationError("--sheet", "goes with INPUT and the sliders alone");
    if (!shot.into.empty() && framesAreGiven)
        throw CLI::ValidationError("--frames", "goes with shots; --into takes all pictures, or a --part of them");
    if (!shot.format.empty() && shot.into.empty())
        throw CLI::ValidationError("--format", "goes with --into; the extension of OUTPUT tells its format");
    shot.input = files.front();
    if (!shot.into.empty()) {
        shot.pictures = files;
    } else if (arguments.sheet.empty()) {
        if (files.size() < 2)
            throw CLI::RequiredError("OUTPUT");
        if (files.size() > 2)
            throw CLI::ValidationError(files[2], "there is one OUTPUT; many pictures go --into a folder");
        shot.output = files[1];
    }
}

/// What `parse` reads in the text of an option. Its failures get the option and the text in front.
template <typename Parse> auto parsed(const std::string& option, const std::string& text, Parse parse) {
    try {
        return parse(text);
    } catch (const Failure& failure) {
        throw UsageError(option + " " + text + ": " + failure.what());
    }
}

} // namespace

Arguments parseArguments(int count, const char* const* words, const Registration& plugin,
                         const std::vector<Slider>& sliders) {
    Arguments arguments;
    Texts texts;
    CLI::App app("Renders pictures and shots through " + plugin.name + ". " + plugin.explanation, "ombrique-render");
    app.footer(footer(sliders));
    app.set_version_flag("--version", "ombrique-render " OMBRIQUE_VERSION, "Print the version and exit");
    addOptions(app, arguments, texts, sliders);
    try {
        app.parse(count, words);
        assignFiles(arguments, texts.files, texts.frames.has_value());
    } catch (const CLI::CallForHelp&) {
        arguments.answer = app.help();
        return arguments;
    } catch (const CLI::CallForVersion& version) {
        arguments.answer = std::string(version.what()) + "\n";
        return arguments;
    } catch (const CLI::ParseError& error) {
        throw UsageError(std::string(error.what()) + " (--help tells more)");
    }
    arguments.verbosity = texts.quiet ? Verbosity::Quiet : texts.verbose ? Verbosity::Verbose : Verbosity::Normal;
    arguments.shot.skipExisting |= arguments.listMissing;
    if (texts.frames)
        arguments.shot.frames = parsed("--frames", *texts.frames, parseFrameRanges);
    if (texts.part)
        arguments.shot.part = parsed("--part", *texts.part, parseFramePart);
    for (const Slider& slider : sliders) {
        const std::optional<std::string>& text = texts.sliders[slider.index];
        const auto parseAs = [&](auto parse) {
            return parsed("--" + slider.word(), *text, [&](const std::string& value) { return parse(slider, value); });
        };
        if (text && arguments.sheet.empty())
            arguments.values.emplace(slider.index, parseAs(parseSliderValue));
        else if (text)
            arguments.lists.emplace(slider.index, parseAs(parseSliderList));
    }
    return arguments;
}

} // namespace Ombrique::Hosts
