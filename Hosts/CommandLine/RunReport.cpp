#include "Hosts/CommandLine/RunReport.h"

#include "Hosts/CommandLine/StopSignals.h"
#include "Hosts/Shots/FrameRanges.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cmath>
#include <cstdio>
#include <new>
#include <sys/ioctl.h>
#include <unistd.h>

namespace Ombrique::Hosts {

namespace {

using namespace std::chrono_literals;

constexpr auto kBetweenBars = 100ms;
constexpr auto kBetweenLines = 5s;
/// A shot whose disk has gone fails thousands of times for one reason.
constexpr std::size_t kMostTold = 20;
constexpr const char* kClearLine = "\r\x1b[K";

std::string decimal(double value, int digits) {
    char text[32];
    std::snprintf(text, sizeof text, "%.*f", digits, value);
    return text;
}

/// "0:07", "12:30", "3:01:59".
std::string clockText(double seconds) {
    const long whole = std::lround(std::min(seconds, 1e8));
    char text[32];
    if (whole < 3600)
        std::snprintf(text, sizeof text, "%ld:%02ld", whole / 60, whole % 60);
    else
        std::snprintf(text, sizeof text, "%ld:%02ld:%02ld", whole / 3600, whole / 60 % 60, whole % 60);
    return text;
}

template <typename Tell> void tellIfPossible(Tell tell) noexcept {
    try {
        tell();
    } catch (const std::bad_alloc&) {
        // A frame is done or not, whether that can be told or not.
    }
}

int terminalColumns() {
    winsize size{};
    return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

} // namespace

RunReport::RunReport(const StandardStreams& streams, const Shot& shot, Verbosity verbosity)
    : mStreams(streams), mIsSequence(shot.isSequence), mTotal(static_cast<int>(shot.frames.size())),
      mSkipped(shot.skipped), mVerbosity(verbosity), mIsTerminal(isatty(STDERR_FILENO) != 0) {
    mFailed.reserve(shot.frames.size());
}

bool RunReport::stopRequested() const noexcept { return StopSignals::requested() != 0; }

void RunReport::frameDone(const ShotFrame& frame, const std::vector<std::string>& losses, double seconds) noexcept {
    const std::lock_guard lock(mMutex);
    ++mDone;
    tellIfPossible([&] {
        for (const std::string& loss : losses)
            if (mVerbosity != Verbosity::Quiet && mLossesTold.insert(loss.substr(0, loss.find(" ("))).second)
                printLine({"note: ", frame.input.native(), ": ", loss});
        if (mVerbosity == Verbosity::Verbose)
            printLine({frame.output.native(), ": done in ", decimal(seconds, 2), " s"});
        showProgress();
    });
}

void RunReport::frameFailed(const ShotFrame& frame, std::initializer_list<std::string_view> text) noexcept {
    const std::lock_guard lock(mMutex);
    mFailed.push_back(frame.number);
    if (mFailed.size() <= kMostTold)
        printLine(text);
    tellIfPossible([this] { showProgress(); });
}

void RunReport::end(int signal) {
    const std::lock_guard lock(mMutex);
    std::ranges::sort(mFailed);
    const double elapsed = std::chrono::duration<double>(Clock::now() - mStart).count();
    if (mIsSequence && mVerbosity != Verbosity::Quiet)
        printLine({std::to_string(mDone) + " of " + std::to_string(mTotal) + " frames in " + clockText(elapsed) + ", " +
                       decimal(mDone / std::max(elapsed, 1e-3), 1) + " frames/s",
                   mSkipped > 0 ? "; " + std::to_string(mSkipped) + " more were there" : ""});
    if (mFailed.size() > kMostTold)
        printLine({std::to_string(mFailed.size() - kMostTold), " more failed"});
    if (mIsSequence && !mFailed.empty())
        printLine({"failed: ", describeFrames(mFailed)});
    if (signal != 0)
        printLine({"stopped by signal ", std::to_string(signal)});
}

void RunReport::printLine(std::initializer_list<std::string_view> text) const {
    std::array<std::string_view, 4> parts;
    assert(text.size() <= parts.size());
    std::ranges::copy(text, parts.begin());
    mStreams.printMessage({mIsTerminal && mIsSequence ? kClearLine : "", "ombrique-render: ", parts[0], parts[1],
                           parts[2], parts[3], "\n"});
}

void RunReport::showProgress() {
    const auto now = Clock::now();
    const auto between = mIsTerminal ? Clock::duration(kBetweenBars) : Clock::duration(kBetweenLines);
    if (!mIsSequence || mVerbosity == Verbosity::Quiet || now - mLastShown < between)
        return;
    mLastShown = now;
    const double elapsed = std::chrono::duration<double>(now - mStart).count();
    if (mIsTerminal)
        mStreams.printMessage({kClearLine, barText(elapsed)});
    else
        printLine({progressText(elapsed)});
}

std::string RunReport::progressText(double elapsed) const {
    const int over = mDone + static_cast<int>(mFailed.size());
    const double perSecond = over / std::max(elapsed, 1e-3);
    return std::to_string(over) + " of " + std::to_string(mTotal) + " frames, " + decimal(perSecond, 1) +
           " frames/s, " + clockText((mTotal - over) / perSecond) + " left";
}

std::string RunReport::barText(double elapsed) const {
    const std::string text = " " + progressText(elapsed);
    const int room = terminalColumns() - static_cast<int>(text.size()) - 3; // brackets, and a free last column
    if (room < 4)
        return text.substr(1, static_cast<std::size_t>(std::max(0, terminalColumns() - 1)));
    const int filled = room * (mDone + static_cast<int>(mFailed.size())) / mTotal;
    return "[" + std::string(static_cast<std::size_t>(filled), '#') +
           std::string(static_cast<std::size_t>(room - filled), '.') + "]" + text;
}

} // namespace Ombrique::Hosts
