#include "Hosts/Pictures/QuietStandardError.h"

#include <cstdio>
#include <fcntl.h>
#include <mutex>
#include <unistd.h>

namespace Ombrique::Hosts {

namespace {

struct Quiet {
    std::mutex mutex;
    int users = 0;
    int standardError = -1;
};

Quiet& quiet() {
    static Quiet instance;
    return instance;
}

} // namespace

QuietStandardError::QuietStandardError() {
    const std::lock_guard lock(quiet().mutex);
    if (quiet().users++ > 0)
        return;
    std::fflush(stderr);
    quiet().standardError = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    dup2(nowhere, STDERR_FILENO);
    close(nowhere);
}

QuietStandardError::~QuietStandardError() {
    const std::lock_guard lock(quiet().mutex);
    if (--quiet().users > 0)
        return;
    std::fflush(stderr);
    dup2(quiet().standardError, STDERR_FILENO);
    close(quiet().standardError);
}

} // namespace Ombrique::Hosts
