#pragma once

#include "Hosts/Engine/Effect.h"
#include "Tests/Support/HostContext.h"
#include "Tests/Support/PixelOracle.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <optional>
#include <string>

namespace Ombrique::Tests {

struct Size {
    int width;
    int height;
};

/// A frame that a host asks for. A test names what isn't as here.
struct Case {
    const char* name = "";
    /// Without pixels, a world has no memory.
    Size size{7, 5};
    Correction correction{1.3, 4.0};
    /// Of the output; the input's where nothing is said.
    std::optional<Size> outputSize{};
    Hosts::WorldLayout input{};
    Hosts::WorldLayout output{};
    bool hasInput = true;
    bool hasOutput = true;
    /// Input and output are one world.
    bool inPlace = false;
    PF_Err error = PF_Err_NONE;
};

inline void PrintTo(const Case& testCase, std::ostream* stream) { *stream << testCase.name; }

/// The real plug-in, loaded from its bundle and set up, in a host that has a context of its own.
class EffectTest : public testing::Test {
protected:
    /// The host's context is of this interface.
    explicit EffectTest(EGLenum api = EGL_OPENGL_API);

    /// Runs `action`, which may send any command, with the host's context current, and expects what holds whatever it
    /// came to: the host's context and its state are as before, the next frame is right, and the number of OpenGL
    /// objects is as before. An effect that `action` has set down is set up again first.
    void check(const std::function<void()>& action);

    /// Renders one frame under check(): the picture is the oracle's, or where an error is due, the output is untouched.
    void render(const Case& testCase);

    /// Makes each call of the host that `action` causes fail, in each way, and each allocation of the plug-in, under
    /// check() and with the result that is due. `action` gives its plan to the commands that it sends. Tries one of
    /// `every`; see Sweep.h.
    void sweep(const std::string& name, int every,
               const std::function<Hosts::CommandResult(Hosts::FaultPlan&)>& action);

    /// A plain frame, beside check() and without its cost. The text says what is wrong with it.
    std::string plainFrame(const Correction& correction = {1.4, 5.0}, unsigned seed = 1, Size size = {7, 5}) const;

    /// The largest picture on each side that the driver can hold in all that a frame needs.
    int mostPixels() const;

    Hosts::PluginBundle bundle{OMBRIQUE_TEST_BUNDLE};
    Hosts::Effect effect{bundle};
    HostContext host;

private:
    std::map<std::string, int> mObjects;
};

} // namespace Ombrique::Tests
