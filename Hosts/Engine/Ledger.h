#pragma once

#include "Hosts/Engine/HandleTable.h"
#include "Platform/HostInterface/HostInterface.h"

#include <string>
#include <vector>

namespace Ombrique::Hosts {

/// The host's account of what a plug-in takes and gives back. Balance means:
///
/// - each suite is released as often as it was acquired, by the same name and version;
/// - each parameter that was checked out is checked in with the same structure (checking in a structure that holds no
///   parameter, with a param_type of 0, does nothing);
/// - each handle is unlocked as often as locked, and disposed of; each memory handle is freed, locked or not;
/// - nothing is written behind the memory of a handle.
///
/// What a failing call handed out nevertheless (FaultKind::Misreport) may be given back or not. One thread at a time.
class Ledger {
public:
    /// A host service that the plug-in used wrongly.
    void note(std::string finding) { mNotes.push_back(std::move(finding)); }

    /// `name` must live as long as the ledger. `optional`: reported to the plug-in as failed.
    void suiteAcquired(const char* name, std::int32_t version, bool optional);
    /// False, and noted, where that suite isn't held.
    bool suiteReleased(const char* name, std::int32_t version);

    void parameterCheckedOut(const PF_ParamDef* definition, std::int32_t index, bool optional);
    /// False, and noted, where the structure holds a parameter that isn't checked out.
    bool parameterCheckedIn(const PF_ParamDef* definition);

    HandleTable& handles() { return mHandles; }
    HandleTable& memoryHandles() { return mMemoryHandles; }
    std::vector<std::string>& notes() { return mNotes; }

    /// What is out of balance now, and what was noted: one line each, empty when all is well.
    std::vector<std::string> findings() const;
    /// Forgets everything and frees all handles.
    void clear();

private:
    struct HeldSuite {
        const char* name;
        std::int32_t version;
        bool optional;
    };
    struct HeldParameter {
        const PF_ParamDef* definition;
        std::int32_t index;
        bool optional;
    };

    std::vector<std::string> mNotes;
    std::vector<HeldSuite> mSuites;
    std::vector<HeldParameter> mParameters;
    HandleTable mHandles{"handle", true};
    HandleTable mMemoryHandles{"memory handle", false};
};

} // namespace Ombrique::Hosts
