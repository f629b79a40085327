#pragma once

#include <stdexcept>

namespace Ombrique::Hosts {

/// An expected failure: a file that can't be read, a value out of range. The text is one line that names the file or
/// the value first; the program ends with status 1.
class Failure : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// The plug-in refused. What it printed belongs to the report.
class PluginFailure : public Failure {
    using Failure::Failure;
};

/// An invalid command line; the program ends with status 2.
class UsageError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

} // namespace Ombrique::Hosts
