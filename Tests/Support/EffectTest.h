#pragma once

#include "Hosts/Engine/Effect.h"
#include "Tests/Support/HostContext.h"
#include "Tests/Support/PixelOracle.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>

namespace Ombrique::Tests {

struct Size {
    int width;
    int height;
};

/// The real plug-in, loaded from its bundle and set up, in a host that has a context of its own.
class EffectTest : public testing::Test {
protected:
    EffectTest();

    /// Runs `action`, which may send any command, with the host's context current, and expects what holds whatever it
    /// came to: the host's context and its state are as before, the next frame is right, and the number of OpenGL
    /// objects is as before. An effect that `action` has set down is set up again first.
    void check(const std::function<void()>& action);

    /// Makes each call of the host that `action` causes fail, in each way, and each allocation of the plug-in, under
    /// check() and with the result that is due. `action` gives its plan to the commands that it sends. Tries one of
    /// `every`; see Sweep.h.
    void sweep(const std::string& name, int every,
               const std::function<Hosts::CommandResult(Hosts::FaultPlan&)>& action);

    /// A plain frame, beside check() and without its cost. The text says what is wrong with it.
    std::string plainFrame(const Correction& correction = {1.4, 5.0}, unsigned seed = 1, Size size = {7, 5}) const;

    Hosts::PluginBundle bundle{OMBRIQUE_TEST_BUNDLE};
    Hosts::Effect effect{bundle};
    HostContext host{EGL_OPENGL_API};

private:
    std::map<std::string, int> mObjects;
};

} // namespace Ombrique::Tests
