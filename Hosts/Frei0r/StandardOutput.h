#pragma once

namespace Ombrique::Hosts {

/// From here on, what the calling thread prints through std::cout goes to standard error.
///
/// A tool's standard output may carry its video, and the plug-in prints there: the driver's identity, whenever it makes
/// a context. Moving file descriptor 1 aside meanwhile would move it for all threads of the tool, and lose what they
/// write. So std::cout gets a buffer that tells the threads apart, once for the process, and for good: the text of all
/// other threads goes where it went before.
///
/// What this doesn't catch is text that is printed by other means, such as the log of a shader that the driver doesn't
/// compile.
void divertStandardOutputOfThisThread();

} // namespace Ombrique::Hosts
