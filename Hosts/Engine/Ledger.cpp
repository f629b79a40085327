#include "Hosts/Engine/Ledger.h"

#include <algorithm>
#include <cstring>

namespace Ombrique::Hosts {

namespace {

std::string suiteText(const char* name, std::int32_t version) {
    return "suite \"" + std::string(name) + "\" version " + std::to_string(version);
}

/// Removes the first entry that `matches`, one that isn't optional before one that is; false where none does.
template <typename Entries, typename Matches> bool removeFirst(Entries& entries, Matches matches) {
    auto found = std::find_if(entries.begin(), entries.end(),
                              [&](const auto& entry) { return !entry.optional && matches(entry); });
    if (found == entries.end())
        found = std::find_if(entries.begin(), entries.end(), matches);
    if (found == entries.end())
        return false;
    entries.erase(found);
    return true;
}

} // namespace

void Ledger::suiteAcquired(const char* name, std::int32_t version, bool optional) {
    mSuites.push_back({name, version, optional});
}

bool Ledger::suiteReleased(const char* name, std::int32_t version) {
    const bool held = removeFirst(mSuites, [&](const HeldSuite& suite) {
        return suite.version == version && std::strcmp(suite.name, name) == 0;
    });
    if (!held)
        note(suiteText(name, version) + " released, but not held");
    return held;
}

void Ledger::parameterCheckedOut(const PF_ParamDef* definition, std::int32_t index, bool optional) {
    mParameters.push_back({definition, index, optional});
}

bool Ledger::parameterCheckedIn(const PF_ParamDef* definition) {
    const bool held =
        removeFirst(mParameters, [&](const HeldParameter& parameter) { return parameter.definition == definition; });
    if (held || definition->param_type == 0)
        return true;
    note("parameter \"" + std::string(definition->name, strnlen(definition->name, sizeof definition->name)) +
         "\" checked in, but not checked out");
    return false;
}

std::vector<std::string> Ledger::findings() const {
    std::vector<std::string> result = mNotes;
    for (const HeldSuite& suite : mSuites)
        if (!suite.optional)
            result.push_back(suiteText(suite.name, suite.version) + " still held");
    for (const HeldParameter& parameter : mParameters)
        if (!parameter.optional)
            result.push_back("parameter " + std::to_string(parameter.index) + " still checked out");
    mHandles.reportHeld(result);
    mMemoryHandles.reportHeld(result);
    return result;
}

void Ledger::clear() {
    mNotes.clear();
    mSuites.clear();
    mParameters.clear();
    mHandles.clear();
    mMemoryHandles.clear();
}

} // namespace Ombrique::Hosts
