#pragma once

namespace Ombrique::Hosts {

/// While any of these lives, nothing reaches standard error. Decoders print there, around the error that they return;
/// what went wrong is told by whoever called them, in one line.
class QuietStandardError {
public:
    QuietStandardError();
    ~QuietStandardError();
    QuietStandardError(const QuietStandardError&) = delete;
    QuietStandardError& operator=(const QuietStandardError&) = delete;
};

} // namespace Ombrique::Hosts
