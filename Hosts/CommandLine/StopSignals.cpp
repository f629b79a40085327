#include "Hosts/CommandLine/StopSignals.h"

#include <csignal>

namespace Ombrique::Hosts {

namespace {

constexpr int kSignals[] = {SIGINT, SIGTERM};

volatile std::sig_atomic_t asked = 0;

void ask(int signal) { asked = signal; }

} // namespace

StopSignals::StopSignals() {
    struct sigaction action {};
    action.sa_handler = ask;
    // The second one meets the signal's own effect.
    action.sa_flags = static_cast<int>(SA_RESETHAND) | SA_RESTART;
    for (const int signal : kSignals) {
        struct sigaction before {};
        // Who started us with a signal ignored, as nohup and background jobs do, wants it so.
        if (sigaction(signal, nullptr, &before) == 0 && before.sa_handler != SIG_IGN)
            sigaction(signal, &action, nullptr);
    }
}

StopSignals::~StopSignals() {
    for (const int signal : kSignals) {
        struct sigaction now {};
        if (sigaction(signal, nullptr, &now) == 0 && now.sa_handler == ask)
            std::signal(signal, SIG_DFL);
    }
}

int StopSignals::requested() { return asked; }

void StopSignals::obey() {
    if (asked != 0) {
        std::signal(asked, SIG_DFL);
        std::raise(asked);
    }
}

} // namespace Ombrique::Hosts
