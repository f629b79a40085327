#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace Ombrique::Hosts {

/// Keeps the program's results apart from what libraries print. From construction on, standard output in the sense of
/// the C and C++ libraries leads to a store in memory, or once that was released, to standard error; the real standard
/// output takes results alone. One object a program, made before any thread.
class StandardStreams {
public:
    StandardStreams();
    ~StandardStreams();
    StandardStreams(const StandardStreams&) = delete;
    StandardStreams& operator=(const StandardStreams&) = delete;

    /// Writes text to the real standard output.
    /// @throw Failure where it can't be written.
    void printResult(const std::string& text) const;
    /// Writes the parts of a text to standard error at once, also while a QuietStandardError lives; a failed write is
    /// ignored. Needs no memory. Eight parts at most.
    void printMessage(std::initializer_list<std::string_view> parts) const;
    /// Sends what libraries printed so far to standard error, and whatever they print from now on. Where this is never
    /// called, their text is dropped: a wrong command line is answered in one line.
    void releaseLibraryText();

private:
    int mResults = -1;
    int mMessages = -1;
    int mHeld = -1;
};

} // namespace Ombrique::Hosts
