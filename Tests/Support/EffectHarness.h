#pragma once

#include "Hosts/Engine/Effect.h"
#include "Tests/Support/PixelOracle.h"

#include <gtest/gtest.h>

#include <utility>

namespace Ombrique::Tests {

/// The real plug-in, loaded from its bundle and set up, for as long as a test lasts.
class EffectHarness {
public:
    EffectHarness() : bundle(OMBRIQUE_TEST_BUNDLE), effect(bundle) {
        const Hosts::CommandResult result = effect.setUp();
        EXPECT_TRUE(result.clean()) << result.describe();
    }

    /// Renders `input` into a new world of its size, and fails the test where the plug-in or the host objects.
    Hosts::World render(Hosts::World& input, double contrast, double brightness) const {
        Hosts::World output(input.width(), input.height());
        output.fill(PF_Pixel8{17, 34, 51, 68});
        const Hosts::FrameResult result =
            effect.render({.input = &input, .output = &output, .values = sliders(contrast, brightness)});
        EXPECT_TRUE(result.clean()) << result.describe();
        return output;
    }

    /// Renders and compares with the oracle.
    void expectRight(Hosts::World& input, double contrast, double brightness) const {
        EXPECT_EQ(compareWithOracle(input, render(input, contrast, brightness), contrast, brightness), "")
            << input.width() << " by " << input.height() << ", contrast " << contrast << ", brightness " << brightness;
    }

    static Hosts::ParameterValues sliders(double contrast, double brightness) {
        return {{1, contrast}, {2, brightness}};
    }

    Hosts::PluginBundle bundle;
    Hosts::Effect effect;
};

} // namespace Ombrique::Tests
