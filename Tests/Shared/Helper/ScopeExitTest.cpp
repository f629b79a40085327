#include "Plugins/Shared/Helper/ScopeExit.h"

#include <gtest/gtest.h>

#include <string>

namespace Ombrique::GaussianBlur {

namespace {

TEST(ScopeExit, RunsOnceInReverseOrderOnEveryWayOut) {
    std::string log;
    const auto leave = [&log](bool byException) {
        const ScopeExit first([&log] { log += '1'; });
        const ScopeExit second([&log] { log += '2'; });
        ScopeExit dismissed([&log] { log += 'x'; });
        dismissed.dismiss();
        if (byException)
            throw 13;
    };
    leave(false);
    EXPECT_EQ("21", log);
    EXPECT_THROW(leave(true), int);
    EXPECT_EQ("2121", log);
}

} // namespace

} // namespace Ombrique::GaussianBlur
