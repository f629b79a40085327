#include "Plugins/Shared/Helper/ScriptHelper.h"

#include "Hosts/Engine/HostCall.h"

#include <gtest/gtest.h>

namespace Ombrique::GaussianBlur {

namespace {

using namespace Hosts;
using namespace std::string_literals;

/// The calls of a host that notes with what it is called. Its memory handles are the texts in them.
std::string notes;

AEGP_MemHandle handle(const char* text) { return reinterpret_cast<AEGP_MemHandle>(const_cast<char*>(text)); }
PF_Err note(const char* what, AEGP_MemHandle handle) {
    notes += what + std::string(reinterpret_cast<const char*>(handle)) + '\n';
    return PF_Err_NONE;
}

constexpr AEGP_UtilitySuite5 kUtilitySuite{[](AEGP_PluginID plugin, const char* script, std::uint8_t platformEncoding,
                                              AEGP_MemHandle* result, AEGP_MemHandle* error) {
    notes += std::to_string(plugin) + ' ' + std::to_string(platformEncoding) + ' ';
    *result = handle("result");
    *error = handle("error");
    return note("run ", handle(script));
}};
constexpr AEGP_MemorySuite1 kMemorySuite{[](AEGP_MemHandle handle, void** text) {
                                             *text = handle;
                                             return note("lock ", handle);
                                         },
                                         nullptr, [](AEGP_MemHandle handle) { return note("free ", handle); }};
SPBasicSuite notingHost{[](const char* name, std::int32_t version, const void** suite) {
                            *suite = version == 11 ? static_cast<const void*>(&kUtilitySuite) : &kMemorySuite;
                            return note("+", handle(name));
                        },
                        [](const char* name, std::int32_t) { return note("-", handle(name)); }};

TEST(ScriptHelper, CallsTheHostInOrder) {
    EXPECT_EQ(RunSriptAndGetStringResult(&notingHost, "app.name"), "result");
    EXPECT_EQ(notes, "+AEGP Utility Suite\n+AEGP Memory Suite\n0 0 run app.name\nlock result\nlock error\n"
                     "free result\nfree error\n-AEGP Memory Suite\n-AEGP Utility Suite\n");
}

/// What comes of a script whose `nth` call of the host fails: a text, or the thrown error's number.
std::string resultWithFault(int nth, FaultKind kind, const std::string& text) {
    FaultPlan plan{{.nth = nth, .kind = kind}};
    const auto engine = [&](const std::string&) { return ScriptResult{text, "error"}; };
    HostCall call({.faults = &plan}, {.parameters = {}, .scriptEngine = engine});
    std::string result;
    try {
        result = RunSriptAndGetStringResult(call.inData()->pica_basicP, "1 + 1");
    } catch (std::int32_t error) {
        result = std::to_string(error);
    }
    EXPECT_EQ(call.findings(), std::vector<std::string>{});
    return result;
}

TEST(ScriptHelper, GivesEverythingBackWhicheverCallFails) {
    // Two acquisitions, the script, two locks, two frees, two releases; then none fails.
    const char* const expected[] = {"13", "13", "", "", "été", "été", "été", "été", "été", "été"};
    for (int nth = 1; nth <= 10; ++nth) {
        const char* const result = expected[nth - 1];
        EXPECT_EQ(resultWithFault(nth, FaultKind::Refuse, "été\0x"s), result) << "call " << nth;
        EXPECT_EQ(resultWithFault(nth, FaultKind::GiveNothing, "été"), result) << "call " << nth;
        EXPECT_EQ(resultWithFault(nth, FaultKind::Misreport, "été"), nth < 3 ? "13" : "été") << "call " << nth;
    }
}

TEST(ScriptHelper, TrimsWhiteSpaceAtTheEndsOnly) {
    for (const auto& [text, expected] :
         {std::pair{"", ""},
          {" \t\n\v\f\r ", ""},
          {"\r\n a b\t\n", "a b"},
          // A no-break space is a character of two bytes, neither of which is white space.
          {" \u00A0é\u0085 ", "\u00A0é\u0085"}})
        EXPECT_EQ(TrimStringWhiteSpaces(text), expected) << '"' << text << '"';
}

} // namespace

} // namespace Ombrique::GaussianBlur
