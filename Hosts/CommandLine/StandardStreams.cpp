#include "Hosts/CommandLine/StandardStreams.h"

#include "Hosts/Pictures/Failure.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <iostream>
#include <span>
#include <sys/mman.h>
#include <sys/uio.h>
#include <system_error>
#include <unistd.h>

namespace Ombrique::Hosts {

namespace {

/// 0, or the error number.
int writeAll(int descriptor, std::span<const char> text) {
    while (!text.empty()) {
        const ssize_t count = write(descriptor, text.data(), text.size());
        if (count < 0 && errno != EINTR)
            return errno;
        if (count > 0)
            text = text.subspan(static_cast<std::size_t>(count));
    }
    return 0;
}

void flushLibraryText() {
    std::cout.flush();
    std::fflush(stdout);
}

} // namespace

StandardStreams::StandardStreams() {
    mResults = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    mMessages = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    mHeld = memfd_create("library text", MFD_CLOEXEC);
    dup2(mHeld >= 0 ? mHeld : STDERR_FILENO, STDOUT_FILENO);
    // Line by line, so that a crash loses nothing that was released.
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
}

StandardStreams::~StandardStreams() {
    flushLibraryText();
    close(mResults);
    close(mMessages);
    if (mHeld >= 0)
        close(mHeld);
}

void StandardStreams::printResult(const std::string& text) const {
    if (const int error = writeAll(mResults, text))
        throw Failure("standard output: can't be written: " + std::generic_category().message(error));
}

void StandardStreams::printMessage(std::initializer_list<std::string_view> parts) const {
    std::array<iovec, 8> pieces{};
    assert(parts.size() <= pieces.size());
    std::ranges::transform(parts, pieces.begin(), [](std::string_view part) {
        return iovec{const_cast<char*>(part.data()), part.size()};
    });
    ssize_t count = 0;
    do
        count = writev(mMessages, pieces.data(), static_cast<int>(parts.size()));
    while (count < 0 && errno == EINTR);
    if (count < 0)
        return;
    // What is full, or interrupted, may have taken less.
    auto written = static_cast<std::size_t>(count);
    for (const std::string_view part : parts) {
        const std::size_t taken = std::min(written, part.size());
        written -= taken;
        writeAll(mMessages, part.substr(taken));
    }
}

void StandardStreams::releaseLibraryText() {
    if (mHeld < 0)
        return;
    flushLibraryText();
    dup2(mMessages, STDOUT_FILENO);
    lseek(mHeld, 0, SEEK_SET);
    std::array<char, 4096> piece;
    for (ssize_t count; (count = read(mHeld, piece.data(), piece.size())) > 0;)
        writeAll(mMessages, {piece.data(), static_cast<std::size_t>(count)});
    close(mHeld);
    mHeld = -1;
}

} // namespace Ombrique::Hosts
