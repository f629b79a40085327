#pragma once

#include <string>

namespace Ombrique::Hosts {

/// The first line of what OpenImageIO says of an error, which may run to several; `otherwise` where it says nothing.
inline std::string firstErrorLine(const std::string& text, const std::string& otherwise) {
    const std::string line = text.substr(0, text.find('\n'));
    return line.empty() ? otherwise : line;
}

} // namespace Ombrique::Hosts
