#include "Hosts/CommandLine/About.h"

#include "Hosts/CommandLine/Failure.h"

#include <algorithm>
#include <iomanip>
#include <sstream>

namespace Ombrique::Hosts {

std::string aboutText(const Effect& effect, const std::vector<SliderOption>& sliders) {
    const CommandResult result = effect.about();
    if (!result.clean())
        throw PluginFailure(result.describe());
    // The host's dialogs break lines at a carriage return.
    std::string message = result.message;
    std::ranges::replace(message, '\r', '\n');

    std::ostringstream text;
    text << message << "\n\nParameters:\n" << std::left;
    for (const SliderOption& slider : sliders)
        text << "  " << std::setw(14) << slider.option << std::setw(20) << slider.label << slider.describeRange()
             << "\n";
    return text.str();
}

} // namespace Ombrique::Hosts
