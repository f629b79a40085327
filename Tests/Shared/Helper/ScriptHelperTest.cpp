#include "Plugins/Shared/Helper/ScriptHelper.h"

#include "Hosts/Engine/HostCall.h"

#include <gtest/gtest.h>

namespace Ombrique::GaussianBlur {

namespace {

using namespace Hosts;
using namespace std::string_literals;

HostEnvironment answering(const ScriptResult& result) {
    return {.parameters = {}, .scriptEngine = [result](const std::string&) { return result; }};
}

TEST(ScriptHelper, ReturnsWhatTheScriptGave) {
    struct Case {
        const char* name;
        ScriptResult given;
        std::string expected;
    };
    for (const auto& [name, given, expected] :
         {Case{"text", {"été\n", ""}, "été\n"}, Case{"empty text", {"", ""}, ""},
          Case{"error", {"", "line 1: no such object"}, ""}, Case{"text with a zero", {"ab\0cd"s, ""}, "ab"},
          Case{"long text", {std::string(100'000, 'x'), ""}, std::string(100'000, 'x')}}) {
        HostCall call({}, answering(given));
        EXPECT_EQ(expected, RunSriptAndGetStringResult(call.inData()->pica_basicP, "1 + 1")) << name;
        EXPECT_EQ(std::vector<std::string>{}, call.findings()) << name;
    }
}

TEST(ScriptHelper, PassesTheScriptAndKeepsTheOrderOfTheHostsCalls) {
    FaultPlan log;
    const auto echo = [](const std::string& script) { return ScriptResult{.text = script}; };
    HostCall call({.faults = &log}, {.parameters = {}, .scriptEngine = echo});
    EXPECT_EQ("app.name", RunSriptAndGetStringResult(call.inData()->pica_basicP, "app.name"));
    EXPECT_EQ((std::vector<std::string>{"AcquireSuite AEGP Utility Suite", "AcquireSuite AEGP Memory Suite",
                                        "AEGP_ExecuteScript", "AEGP_LockMemHandle", "AEGP_LockMemHandle",
                                        "AEGP_FreeMemHandle", "AEGP_FreeMemHandle", "ReleaseSuite AEGP Memory Suite",
                                        "ReleaseSuite AEGP Utility Suite"}),
              log.calls());
}

/// What comes of a script whose `nth` call of the host fails: a text, or the thrown error's number.
std::string resultWithFault(int nth, FaultKind kind) {
    FaultPlan plan{{.nth = nth, .kind = kind}};
    HostCall call({.faults = &plan}, answering({.text = "result", .error = "error"}));
    std::string result;
    try {
        result = RunSriptAndGetStringResult(call.inData()->pica_basicP, "1 + 1");
    } catch (std::int32_t error) {
        result = std::to_string(error);
    }
    EXPECT_EQ(1, plan.fired());
    EXPECT_EQ(std::vector<std::string>{}, call.findings()) << "call " << nth;
    return result;
}

TEST(ScriptHelper, GivesEverythingBackWhicheverCallFails) {
    // Two acquisitions, the script, two locks; then what gives back, whose result doesn't matter.
    const std::vector<std::string> nothingGiven{"13", "13", "", "", "result", "result", "result", "result", "result"};
    const std::vector<std::string> misreported{"13",     "13",     "result", "result", "result",
                                               "result", "result", "result", "result"};
    for (std::size_t index = 0; index < nothingGiven.size(); ++index) {
        const int nth = static_cast<int>(index) + 1;
        EXPECT_EQ(nothingGiven[index], resultWithFault(nth, FaultKind::Refuse)) << "call " << nth;
        EXPECT_EQ(nothingGiven[index], resultWithFault(nth, FaultKind::GiveNothing)) << "call " << nth;
        EXPECT_EQ(misreported[index], resultWithFault(nth, FaultKind::Misreport)) << "call " << nth;
    }
}

TEST(ScriptHelper, TrimsWhiteSpaceAtTheEndsOnly) {
    for (const auto& [text, expected] :
         {std::pair{"", ""},
          {" \t\n\v\f\r ", ""},
          {"\r\n a b\t\n", "a b"},
          {"a", "a"},
          {" a", "a"},
          {"a ", "a"},
          // A no-break space is a character of two bytes, neither of which is white space.
          {" \u00A0é\u0085 ", "\u00A0é\u0085"}})
        EXPECT_EQ(expected, TrimStringWhiteSpaces(text)) << '"' << text << '"';
}

} // namespace

} // namespace Ombrique::GaussianBlur
