#pragma once

namespace Ombrique::Hosts {

/// While it lives, SIGINT and SIGTERM only ask for a stop; a second one ends the program at once. One object a program.
class StopSignals {
public:
    StopSignals();
    ~StopSignals();
    StopSignals(const StopSignals&) = delete;
    StopSignals& operator=(const StopSignals&) = delete;

    /// The signal that asked, or 0. Any thread.
    static int requested();
    /// Ends the program by the signal that asked, so that its caller sees it; returns where none did.
    static void obey();
};

} // namespace Ombrique::Hosts
