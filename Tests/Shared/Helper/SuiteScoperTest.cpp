#include "Plugins/Shared/Helper/SuiteScoper.h"

#include "Hosts/Engine/HostCall.h"

#include <gtest/gtest.h>

namespace Ombrique::GaussianBlur {

namespace {

using namespace Hosts;
using In = PF_InData*;
using Out = PF_OutData*;
using Item = SuiteScoper<AEGP_ItemSuite6>;

constexpr char kItem[] = "AEGP Item Suite";
constexpr char kText[] = "The caller's text";

PF_Err nested(In in, Out) {
    const SuiteScoper<AEGP_LayerSuite5> outer(in, "AEGP Layer Suite", 11);
    const Item inner(in->pica_basicP, kItem, 10);
    return inner.mSuite != nullptr && outer.mSuite != nullptr ? 0 : -1;
}
template <const char*... text> PF_Err shown(In in, Out out) {
    return Item(in, kItem, 10, out, text...).mSuite == nullptr;
}
PF_Err called(In in, Out) { return Item(in, kItem, 10).operator->() == nullptr; }
template <const char* text = nullptr> PF_Err acquire(In in, Out out) {
    void* table = nullptr;
    return AcquireSuite(in, out, kItem, 10, text, &table);
}
PF_Err release(In in, Out out) { return ReleaseSuite(in, out, kItem, 10, kText); }
PF_Err acquireAndRelease(In in, Out out) { return acquire(in, out) + release(in, out); }
PF_Err draw(In in, Out out) {
    DRAWBOT_Suites suites{};
    const PF_Err error = AcquireDrawbotSuites(in, out, &suites);
    return error != 0 ? error : ReleaseDrawbotSuites(in, out);
}
PF_Err drawNowhere(In in, Out out) { return AcquireDrawbotSuites(in, out, nullptr); }
/// The same in a host that has no suites.
template <PF_Err (*use)(In, Out)> PF_Err alone(In in, Out out) {
    in->pica_basicP = nullptr;
    return use(in, out);
}

const Fault kNone{.call = "none"};
const Fault kNoItem{.call = "AcquireSuite AEGP Item Suite"};
const Fault kNullItem{.call = "AcquireSuite AEGP Item Suite", .kind = FaultKind::GiveNothing};
const Fault kItemAndError{.call = "AcquireSuite AEGP Item Suite", .kind = FaultKind::Misreport};
const Fault kNoSuite{.call = "AcquireSuite", .nth = 0};
const Fault kNoRelease{.call = "ReleaseSuite", .nth = 0};
constexpr const char* kNoItemText = "Not able to acquire AEFX Suite-AEGP Item Suite-10";

/// A use of suites while calls of the host fail: what it returns or throws, what the user is shown, the host's calls (+
/// for an acquisition, - for a release), and how many suites stay held.
const struct {
    Fault fault;
    PF_Err (*use)(In, Out);
    PF_Err result;
    std::string message, calls;
    std::size_t held = 0;
} kUses[] = {
    {kNone, nested, 0, "", "+Layer +Item -Item -Layer "},
    {kNoItem, nested, 13, "", "+Layer +Item -Layer "},
    {kItemAndError, nested, 13, "", "+Layer +Item -Layer "},
    {kNullItem, nested, -1, "", "+Layer +Item -Layer "},
    {kNoRelease, nested, 0, "", "+Layer +Item -Item -Layer "},
    {kNone, alone<nested>, 13, "", ""},
    {kNoItem, shown<>, 13, "Not able to acquire AEFX Suite.", "+Item sprintf "},
    {kNoItem, shown<kText>, 13, kText, "+Item sprintf "},
    {kNullItem, called, 13, "", "+Item "},
    {kNone, acquire, 0, "", "+Item ", 1},
    {kItemAndError, acquire, 0, "", "+Item "},
    {kNullItem, acquire, 516, kNoItemText, "+Item sprintf "},
    {kNone, alone<acquire>, 516, kNoItemText, "sprintf "},
    {kNoItem, acquire<kText>, 516, kText, "+Item sprintf "},
    {kNoRelease, acquireAndRelease, 0, "", "+Item -Item "},
    {kItemAndError, acquireAndRelease, 0, "", "+Item -Item "},
    {kNone, alone<release>, 516, kText, "sprintf "},
    {kNone, draw, 0, "", "+Draw +Supplier +Surface +Path -Draw -Supplier -Surface -Path "},
    {kNoSuite, draw, 516, "Not able to acquire AEFX Suite-DRAWBOT Draw Suite-1", "+Draw sprintf "},
    {Fault{.nth = 3}, draw, 516, "Not able to acquire AEFX Suite-DRAWBOT Surface Suite-2",
     "+Draw +Supplier +Surface sprintf ", 2},
    {kNone, drawNowhere, 514, "NULL suite pointer passed to AEFX_AcquireDrawbotSuites", "sprintf "},
    {kNone, alone<ReleaseDrawbotSuites>, 0, "Not able to release AEFX Suite.", "sprintf sprintf sprintf sprintf "},
};

std::string shortened(const std::vector<std::string>& calls) {
    std::string text;
    for (const std::string& call : calls)
        text += call + ' ';
    for (const std::string part : {"AcquireSuite ", "ReleaseSuite ", "AEGP ", "DRAWBOT ", "Suite "})
        for (auto at = text.find(part); at != std::string::npos; at = text.find(part))
            text.replace(at, part.size(), part[0] == 'R' ? "-" : part == "AcquireSuite " ? "+" : "");
    return text;
}

TEST(SuiteScoper, EndsAsItShouldWhicheverCallFails) {
    for (const auto& row : kUses) {
        FaultPlan plan{row.fault};
        HostCall call({.faults = &plan});
        call.outData()->out_flags = 0x41;
        PF_Err result = 0;
        try {
            result = row.use(call.inData(), call.outData());
        } catch (std::int32_t thrown) {
            result = thrown;
        }
        const std::string calls = shortened(plan.calls());
        EXPECT_EQ(calls, row.calls);
        EXPECT_EQ(result, row.result) << calls;
        EXPECT_EQ(call.outData()->return_msg, row.message) << calls;
        EXPECT_EQ(call.outData()->out_flags, row.message.empty() ? 0x41 : 0x41 | PF_OutFlag_DISPLAY_ERROR_MESSAGE);
        EXPECT_EQ(call.findings().size(), row.held) << calls << testing::PrintToString(call.findings());
    }
}

TEST(SuiteScoper, EachMemberOfTheDrawingFamilyGetsItsOwnTable) {
    HostCall call;
    DRAWBOT_Suites suites{};
    AcquireDrawbotSuites(call.inData(), call.outData(), &suites);
    for (const auto& [member, name, version] :
         {std::tuple<const void*, const char*, int>{suites.draw, "DRAWBOT Draw Suite", 1},
          {suites.supplier, "DRAWBOT Supplier Suite", 1},
          {suites.surface, "DRAWBOT Surface Suite", 2},
          {suites.path, "DRAWBOT Path Suite", 1}}) {
        const void* table = nullptr;
        call.inData()->pica_basicP->AcquireSuite(name, version, &table);
        EXPECT_EQ(member, table) << name;
    }
}

} // namespace

} // namespace Ombrique::GaussianBlur
