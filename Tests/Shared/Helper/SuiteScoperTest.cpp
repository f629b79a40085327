#include "Plugins/Shared/Helper/SuiteScoper.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <string>
#include <vector>

namespace Ombrique::GaussianBlur {

namespace {

struct Suite {};
constexpr Suite kSuite;

/// A desk that has every suite but those that a test takes away, and notes what is asked of it.
struct Desk {
    std::vector<std::string> log{};
    /// The acquisition, counted from 0, that is answered with `code` and `table` in place of success.
    std::size_t refused = 99;
    SPErr code = 1;
    const void* table = nullptr;
};
Desk desk;

std::string entry(char sign, const char* name, int version) { return sign + (name + (" " + std::to_string(version))); }

SPErr acquire(const char* name, std::int32_t version, const void** suite) {
    const bool refuse = desk.log.size() == desk.refused;
    desk.log.push_back(entry('+', name, version));
    *suite = refuse ? desk.table : &kSuite;
    return refuse ? desk.code : PF_Err_NONE;
}

SPErr release(const char* name, std::int32_t version) {
    desk.log.push_back(entry('-', name, version));
    return 1;
}

class SuiteScoperTest : public testing::Test {
protected:
    using Log = std::vector<std::string>;

    SuiteScoperTest() {
        desk = {};
        mUtilities.ansi.sprintf = std::sprintf;
        mIn.utils = &mUtilities;
        mIn.pica_basicP = &mBasicSuite;
        mOut.out_flags = 0x41;
    }

    void expectMessage(const char* text) const {
        EXPECT_STREQ(text, mOut.return_msg);
        EXPECT_EQ(0x41 | PF_OutFlag_DISPLAY_ERROR_MESSAGE, mOut.out_flags);
    }
    void expectSilence() const {
        EXPECT_STREQ("", mOut.return_msg);
        EXPECT_EQ(0x41, mOut.out_flags);
    }
    void expectThirteen(const std::function<void()>& acquisition) const {
        try {
            acquisition();
            ADD_FAILURE() << "the refusal passed";
        } catch (std::int32_t error) {
            EXPECT_EQ(13, error);
        }
    }

    SPBasicSuite mBasicSuite{acquire, release};
    PF_UtilCallbacks mUtilities{};
    PF_InData mIn{};
    PF_OutData mOut{};
};

TEST_F(SuiteScoperTest, HoldsNestedSuitesAndReleasesThemUnderTheirOwnNames) {
    {
        const SuiteScoper<Suite> outer(&mIn, "Outer", 11);
        const SuiteScoper<Suite> inner(&mBasicSuite, "Inner", 2);
        EXPECT_EQ(&kSuite, outer.mSuite);
        EXPECT_EQ(&kSuite, inner.mSuite);
    }
    EXPECT_EQ((Log{"+Outer 11", "+Inner 2", "-Inner 2", "-Outer 11"}), desk.log);
}

TEST_F(SuiteScoperTest, ThrowsOnARefusalAndReleasesOnlyWhatItHeld) {
    desk.refused = 1;
    desk.table = &kSuite; // A refusal is one whatever comes with it.
    expectThirteen([&] {
        const SuiteScoper<Suite> held(&mIn, "Held", 1);
        const SuiteScoper<Suite> refused(&mIn, "Refused", 1);
    });
    EXPECT_EQ((Log{"+Held 1", "+Refused 1", "-Held 1"}), desk.log);
    desk.refused = 3;
    expectThirteen([&] { const SuiteScoper<Suite> refused(&mBasicSuite, "Refused", 1); });
    mIn.pica_basicP = nullptr;
    expectThirteen([&] { const SuiteScoper<Suite> noDesk(&mIn, "Refused", 1); });
    EXPECT_EQ(4U, desk.log.size());
}

TEST_F(SuiteScoperTest, ShowsARefusalWhereItCan) {
    for (const char* text : {"The caller's text", static_cast<const char*>(nullptr)}) {
        desk = {.refused = 0};
        expectThirteen([&] { const SuiteScoper<Suite> refused(&mIn, "Refused", 1, &mOut, text); });
        expectMessage(text != nullptr ? text : "Not able to acquire AEFX Suite.");
    }
}

// The scoper believes the host's code, the free function believes the table.
TEST_F(SuiteScoperTest, DiffersFromTheFreeFunctionInWhatItBelieves) {
    void* table = nullptr;
    desk = {.refused = 0, .code = PF_Err_NONE, .table = nullptr};
    { EXPECT_EQ(nullptr, (SuiteScoper<Suite>(&mIn, "Null", 3, &mOut).mSuite)); }
    EXPECT_EQ((Log{"+Null 3"}), desk.log);
    desk = {.refused = 0, .code = 1, .table = &kSuite};
    EXPECT_EQ(PF_Err_NONE, AcquireSuite(&mIn, &mOut, "Odd", 3, nullptr, &table));
    EXPECT_EQ(&kSuite, table);
    expectSilence();
    desk = {.refused = 0, .code = PF_Err_NONE, .table = nullptr};
    table = nullptr;
    EXPECT_EQ(516, AcquireSuite(&mIn, &mOut, "Null", 3, "The caller's text", &table));
    expectMessage("The caller's text");
}

TEST_F(SuiteScoperTest, FreeFunctionsFailWithAMessageWithoutADesk) {
    mIn.pica_basicP = nullptr;
    void* table = nullptr;
    EXPECT_EQ(516, AcquireSuite(&mIn, &mOut, "Some Suite", 7, nullptr, &table));
    expectMessage("Not able to acquire AEFX Suite-Some Suite-7");
    EXPECT_EQ(516, ReleaseSuite(&mIn, &mOut, "Some Suite", 7, "The caller's text"));
    expectMessage("The caller's text");
    mOut.out_flags = 0x41;
    EXPECT_EQ(PF_Err_NONE, ReleaseDrawbotSuites(&mIn, &mOut));
    expectMessage("Not able to release AEFX Suite.");
}

TEST_F(SuiteScoperTest, AcquiresAndReleasesTheDrawingFamily) {
    DRAWBOT_Suites suites{};
    EXPECT_EQ(PF_Err_NONE, AcquireDrawbotSuites(&mIn, &mOut, &suites));
    EXPECT_TRUE(suites.draw != nullptr && suites.supplier != nullptr && suites.surface != nullptr &&
                suites.path != nullptr);
    EXPECT_EQ(PF_Err_NONE, ReleaseDrawbotSuites(&mIn, &mOut));
    expectSilence();
    EXPECT_EQ((Log{"+DRAWBOT Draw Suite 1", "+DRAWBOT Supplier Suite 1", "+DRAWBOT Surface Suite 2",
                   "+DRAWBOT Path Suite 1", "-DRAWBOT Draw Suite 1", "-DRAWBOT Supplier Suite 1",
                   "-DRAWBOT Surface Suite 2", "-DRAWBOT Path Suite 1"}),
              desk.log);
}

TEST_F(SuiteScoperTest, StopsAtTheFirstMissingSuiteOfTheDrawingFamily) {
    for (std::size_t refused = 0; refused < 4; ++refused) {
        desk = {.refused = refused};
        DRAWBOT_Suites suites{};
        EXPECT_EQ(516, AcquireDrawbotSuites(&mIn, &mOut, &suites));
        EXPECT_EQ(refused + 1, desk.log.size()) << "asked on, or gave some back";
        EXPECT_EQ(refused > 0, suites.draw != nullptr);
        EXPECT_EQ(refused > 1, suites.supplier != nullptr);
        EXPECT_EQ(refused > 2, suites.surface != nullptr);
    }
    expectMessage("Not able to acquire AEFX Suite-DRAWBOT Path Suite-1");
    EXPECT_EQ(514, AcquireDrawbotSuites(&mIn, &mOut, nullptr));
    expectMessage("NULL suite pointer passed to AEFX_AcquireDrawbotSuites");
}

} // namespace

} // namespace Ombrique::GaussianBlur
