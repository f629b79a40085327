#pragma once

#include "Hosts/CommandLine/RenderFrame.h"
#include "Hosts/CommandLine/RunReport.h"

namespace Ombrique::Hosts {

/// Renders the frames of a shot with `effect`, which is set up, and tells `report` of each. Reading and writing run on
/// `jobs` threads (0: one more than there are cores), each with one frame at a time, and overlap with the rendering,
/// which takes place on the calling thread. So as many frames as jobs are in memory, however long the shot is. A frame
/// that fails doesn't keep the others. StopSignals end the run early, after the frames that are under way.
///
/// Returns whether the plug-in refused a frame, so that what it printed is of interest.
bool renderShot(const Effect& effect, const Shot& shot, const FrameSettings& settings, int jobs, RunReport& report);

} // namespace Ombrique::Hosts
