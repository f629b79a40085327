#include "Plugins/Shared/Helper/ScopeExit.h"

#include <gtest/gtest.h>

#include <string>

namespace Ombrique::GaussianBlur {

TEST(ScopeExit, RunsOnceInReverseOrderOnEveryWayOut) {
    for (const bool byException : {false, true}) {
        std::string log;
        try {
            const ScopeExit first([&log] { log += '1'; });
            const ScopeExit second([&log] { log += '2'; });
            ScopeExit dismissed([&log] { log += 'x'; });
            dismissed.dismiss();
            if (byException)
                throw 13;
        } catch (int) {
        }
        EXPECT_EQ(log, "21") << "by an exception: " << byException;
    }
}

} // namespace Ombrique::GaussianBlur
