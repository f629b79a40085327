#pragma once

#include "Hosts/CommandLine/Arguments.h"
#include "Hosts/CommandLine/StandardStreams.h"
#include "Hosts/Shots/RenderShot.h"

#include <chrono>
#include <initializer_list>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace Ombrique::Hosts {

/// Tells on standard error how a run goes: a bar on a terminal, a line every few seconds elsewhere, neither for a
/// single picture; what went wrong, always; what of the pictures couldn't be kept, once for each kind of loss. All
/// functions may be called on several threads. Where memory runs out, it tells less.
class RunReport : public ShotObserver {
public:
    /// `streams` must outlive the report.
    RunReport(const StandardStreams& streams, const Shot& shot, Verbosity verbosity);

    /// Whether a signal has asked for a stop: see StopSignals.
    bool stopRequested() const noexcept override;
    void frameDone(const ShotFrame& frame, const std::vector<std::string>& losses, double seconds) noexcept override;
    void frameFailed(const ShotFrame& frame, std::initializer_list<std::string_view> text) noexcept override;
    /// The end of the run: what came of the shot. `signal` stopped it, or 0.
    void end(int signal);

    bool anyFailed() const { return !mFailed.empty(); }

private:
    using Clock = std::chrono::steady_clock;

    void printLine(std::initializer_list<std::string_view> text) const;
    void showProgress();
    std::string progressText(double elapsed) const;
    std::string barText(double elapsed) const;

    const StandardStreams& mStreams;
    const bool mIsSequence;
    const int mTotal;
    const int mSkipped;
    const Verbosity mVerbosity;
    const bool mIsTerminal;
    const Clock::time_point mStart = Clock::now();
    Clock::time_point mLastShown = mStart;
    std::mutex mMutex;
    int mDone = 0;
    /// Reserved for every frame, so that recording a failure never allocates.
    std::vector<int> mFailed;
    std::set<std::string> mLossesTold;
};

} // namespace Ombrique::Hosts
