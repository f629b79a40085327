#include "Hosts/Engine/HostTables.h"
#include "Hosts/Engine/Serve.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string>

// Where suites are acquired and released.
namespace Ombrique::Hosts {

namespace {

// Suites of which only the possession matters: each has an address of its own.
const AEGP_PFInterfaceSuite1 kPfInterfaceSuite{};
const AEGP_LayerSuite5 kLayerSuite{};
const AEGP_ItemSuite6 kItemSuite{};
const DRAWBOT_DrawSuite kDrawSuite{};
const DRAWBOT_SupplierSuite kSupplierSuite{};
const DRAWBOT_SurfaceSuite kSurfaceSuite{};
const DRAWBOT_PathSuite kPathSuite{};

struct OfferedSuite {
    const char* name;
    std::int32_t version;
    const void* table;
};

const OfferedSuite kOfferedSuites[] = {
    {"PF ANSI Suite", 1, &kAnsiSuite},
    {"AEGP PF Interface Suite", 1, &kPfInterfaceSuite},
    {"AEGP Layer Suite", 11, &kLayerSuite},
    {"AEGP Item Suite", 10, &kItemSuite},
    {"PF iterateFloat Suite", 1, &kIterateFloatSuite},
    {"PF Handle Suite", 2, &kHandleSuite},
    {"AEGP Utility Suite", 11, &kUtilitySuite},
    {"AEGP Memory Suite", 1, &kMemorySuite},
    {"DRAWBOT Draw Suite", 1, &kDrawSuite},
    {"DRAWBOT Supplier Suite", 1, &kSupplierSuite},
    {"DRAWBOT Surface Suite", 2, &kSurfaceSuite},
    {"DRAWBOT Path Suite", 1, &kPathSuite},
};

SPErr acquireSuite(const char* name, std::int32_t version, const void** suite) {
    if (!name || !suite)
        return PF_Err_BAD_CALLBACK_PARAM;
    *suite = nullptr;
    return serve("AcquireSuite", name, [&](HostCall& call, bool optional) -> PF_Err {
        const auto* const offered =
            std::find_if(std::begin(kOfferedSuites), std::end(kOfferedSuites), [&](const OfferedSuite& one) {
                return one.version == version && std::strcmp(one.name, name) == 0;
            });
        if (offered == std::end(kOfferedSuites))
            return A_Err_MISSING_SUITE;
        call.ledger().suiteAcquired(offered->name, offered->version, optional);
        *suite = offered->table;
        return PF_Err_NONE;
    });
}

SPErr releaseSuite(const char* name, std::int32_t version) {
    if (!name)
        return PF_Err_BAD_CALLBACK_PARAM;
    return serveReturn("ReleaseSuite", name, [&](HostCall& call) -> PF_Err {
        return call.ledger().suiteReleased(name, version) ? PF_Err_NONE : PF_Err_BAD_CALLBACK_PARAM;
    });
}

} // namespace

SPBasicSuite kBasicSuite = {acquireSuite, releaseSuite};

} // namespace Ombrique::Hosts
