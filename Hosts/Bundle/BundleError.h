#pragma once

#include <stdexcept>

namespace Ombrique::Hosts {

/// A bundle that can't be used. The text is one line and begins with the file that is at fault.
class BundleError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

} // namespace Ombrique::Hosts
