#include "Hosts/CommandLine/Arguments.h"

#include "Hosts/CommandLine/Failure.h"

#include <CLI/CLI.hpp>

#include <map>

namespace Ombrique::Hosts {
namespace {

constexpr const char* kDescription =
    "Corrects contrast and brightness of a picture through the Ombrique Contrast plug-in.";

constexpr const char* kFooter = R"(
Any format that OpenImageIO reads and writes will do; the extension of OUTPUT tells which. An existing OUTPUT is
replaced only by a finished picture. Results go to standard output, all else to standard error.

Examples:
  ombrique-render photo.png corrected.png --contrast 1.4 --brightness 5
  ombrique-render plate.exr preview.jpg --brightness -12

Environment:
  OMBRIQUE_PLUGIN_PATH   the plug-in's bundle, instead of the one beside the program

Exit status: 0 done, 1 something could not be read, rendered or written, 2 wrong command line.)";

} // namespace

Arguments parseArguments(int count, const char* const* words, const std::vector<SliderOption>& sliders) {
    Arguments arguments;
    CLI::App app(kDescription, "ombrique-render");
    app.footer(kFooter);
    app.set_version_flag("--version", "ombrique-render " OMBRIQUE_VERSION, "Print the version and exit");
    app.add_option("INPUT", arguments.input, "The picture to correct");
    app.add_option("OUTPUT", arguments.output, "Where the corrected picture goes");
    app.add_flag("--about", arguments.about, "Print what the plug-in says of itself, and its parameters");
    // As text, so that a wrong number is told apart from a wrong command line.
    std::map<int, std::string> texts;
    for (const SliderOption& slider : sliders)
        app.add_option(slider.option, texts[slider.index], slider.label + ": " + slider.describeRange())
            ->type_name("X");
    try {
        app.parse(count, words);
        if (!arguments.about && arguments.output.empty())
            throw CLI::RequiredError(arguments.input.empty() ? "INPUT" : "OUTPUT");
    } catch (const CLI::CallForHelp&) {
        arguments.answer = app.help();
        return arguments;
    } catch (const CLI::CallForVersion& version) {
        arguments.answer = std::string(version.what()) + "\n";
        return arguments;
    } catch (const CLI::ParseError& error) {
        throw UsageError(std::string(error.what()) + " (--help tells more)");
    }
    for (const SliderOption& slider : sliders)
        if (app.count(slider.option) > 0)
            arguments.values.emplace(slider.index, slider.parse(texts[slider.index]));
    return arguments;
}

} // namespace Ombrique::Hosts
