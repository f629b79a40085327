#include "Plugins/Shared/Helper/ScopeExit.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace Ombrique::GaussianBlur {
namespace {

TEST(ScopeExit, RunsOnceInReverseOrderOnEveryWayOut) {
    std::string log;
    const auto leave = [&log](bool byException) {
        const ScopeExit first([&log] { log += '1'; });
        const ScopeExit second([&log, owned = std::make_unique<char>('2')] { log += *owned; });
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
