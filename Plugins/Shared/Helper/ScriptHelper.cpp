#include "Plugins/Shared/Helper/ScriptHelper.h"

#include "Plugins/Shared/Helper/ScopeExit.h"
#include "Plugins/Shared/Helper/SuiteScoper.h"

#include <algorithm>
#include <cctype>
#include <iterator>

namespace Ombrique::GaussianBlur {

namespace {

// Null where there is no memory, or where the host can't lock it.
const char* lockText(const AEGP_MemorySuite1& memorySuite, AEGP_MemHandle handle) {
    void* text = nullptr;
    if (handle != nullptr)
        memorySuite.AEGP_LockMemHandle(handle, &text);
    return static_cast<const char*>(text);
}

void freeText(const AEGP_MemorySuite1& memorySuite, AEGP_MemHandle handle) {
    if (handle != nullptr)
        memorySuite.AEGP_FreeMemHandle(handle);
}

bool isNotWhiteSpace(char character) {
    const auto byte = static_cast<signed char>(character);
    return byte < 0 || std::isspace(byte) == 0;
}

} // namespace

std::string RunSriptAndGetStringResult(SPBasicSuite* basicSuite, const char* script) {
    const SuiteScoper<AEGP_UtilitySuite5> utilitySuite(basicSuite, "AEGP Utility Suite", 11);
    const SuiteScoper<AEGP_MemorySuite1> memoryScope(basicSuite, "AEGP Memory Suite", 1);
    // Throws where the host left the table out, while there is no memory to give back yet.
    const AEGP_MemorySuite1& memorySuite = *memoryScope.operator->();

    AEGP_MemHandle resultHandle = nullptr;
    AEGP_MemHandle errorHandle = nullptr;
    // Freed while locked, the result first.
    const ScopeExit freeError([&] { freeText(memorySuite, errorHandle); });
    const ScopeExit freeResult([&] { freeText(memorySuite, resultHandle); });

    utilitySuite->AEGP_ExecuteScript(0, script, 0, &resultHandle, &errorHandle);
    const char* resultText = lockText(memorySuite, resultHandle);
    lockText(memorySuite, errorHandle);
    return resultText != nullptr ? resultText : "";
}

std::string TrimStringWhiteSpaces(const std::string& text) {
    const auto first = std::find_if(text.begin(), text.end(), isNotWhiteSpace);
    const auto last = std::find_if(text.rbegin(), std::make_reverse_iterator(first), isNotWhiteSpace);
    return {first, last.base()};
}

} // namespace Ombrique::GaussianBlur
