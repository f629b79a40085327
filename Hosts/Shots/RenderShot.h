#pragma once

#include "Hosts/Shots/RenderFrame.h"

#include <initializer_list>
#include <string_view>

namespace Ombrique::Hosts {

/// Is told how the rendering of a shot goes. All functions are called on several threads at once.
class ShotObserver {
public:
    /// Whether to begin no further frame.
    virtual bool stopRequested() const noexcept = 0;
    /// A frame's output is there. `losses` are what of the picture couldn't be kept, without the file's name.
    virtual void frameDone(const ShotFrame& frame, const std::vector<std::string>& losses, double seconds) noexcept = 0;
    /// A frame has no output. `text` is the reason, in four parts at most.
    virtual void frameFailed(const ShotFrame& frame, std::initializer_list<std::string_view> text) noexcept = 0;

protected:
    ~ShotObserver() = default;
};

/// Renders the frames of a shot with `effect`, which is set up, and tells `observer` of each. Reading and writing run
/// on `jobs` threads, each with one frame at a time, and overlap with the rendering, which takes place on the calling
/// thread. So as many frames as jobs are in memory, however long the shot is. With 0 for `jobs`, these are one more
/// than there are cores, but no more than fit into a quarter of the machine's memory, or of what the process's control
/// group may take. A frame that fails doesn't keep the others. A stop ends the run after the frames that are under way.
///
/// Returns whether the plug-in refused a frame, so that what it printed is of interest.
bool renderShot(Effect& effect, const Shot& shot, const FrameSettings& settings, int jobs, ShotObserver& observer);

} // namespace Ombrique::Hosts
