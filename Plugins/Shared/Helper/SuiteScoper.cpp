#include "Plugins/Shared/Helper/SuiteScoper.h"

#include <array>
#include <cstdio>

namespace Ombrique::GaussianBlur {

namespace {

struct SuiteId {
    const char* name;
    int version;
};

// The drawing family, in the order of the members of DRAWBOT_Suites.
constexpr SuiteId kDrawSuite{"DRAWBOT Draw Suite", 1};
constexpr SuiteId kSupplierSuite{"DRAWBOT Supplier Suite", 1};
constexpr SuiteId kSurfaceSuite{"DRAWBOT Surface Suite", 2};
constexpr SuiteId kPathSuite{"DRAWBOT Path Suite", 1};

void showError(const PF_InData* in_data, PF_OutData* out_data, const char* message) {
    out_data->out_flags |= PF_OutFlag_DISPLAY_ERROR_MESSAGE;
    in_data->utils->ansi.sprintf(out_data->return_msg, message);
}

// A member has a type of its own, so the table passes through a variable of the type that AcquireSuite writes to.
template <typename Suite>
PF_Err acquireMember(PF_InData* in_data, PF_OutData* out_data, SuiteId id, const Suite*& member) {
    void* table = nullptr;
    const PF_Err error = AcquireSuite(in_data, out_data, id.name, id.version, nullptr, &table);
    member = static_cast<const Suite*>(table);
    return error;
}

} // namespace

const void* Detail::acquireOrThrow(SPBasicSuite* basicSuite, const char* name, int version, const PF_InData* in_data,
                                   PF_OutData* out_data, const char* errorMessage) {
    const void* table = nullptr;
    if (basicSuite != nullptr && basicSuite->AcquireSuite(name, version, &table) == PF_Err_NONE)
        return table;
    if (out_data != nullptr)
        showError(in_data, out_data, errorMessage != nullptr ? errorMessage : "Not able to acquire AEFX Suite.");
    // The entry point catches the integer, not the enumeration.
    throw PF_Err{A_Err_MISSING_SUITE};
}

PF_Err AcquireSuite(PF_InData* in_data, PF_OutData* out_data, const char* name, int version, const char* error,
                    void** suite) {
    if (in_data->pica_basicP != nullptr) {
        in_data->pica_basicP->AcquireSuite(name, version, const_cast<const void**>(suite));
        if (*suite != nullptr)
            return PF_Err_NONE;
    }
    std::array<char, 1024> text{};
    std::snprintf(text.data(), text.size(), "Not able to acquire AEFX Suite-%s-%d", name, version);
    showError(in_data, out_data, error != nullptr ? error : text.data());
    return PF_Err_BAD_CALLBACK_PARAM;
}

PF_Err ReleaseSuite(PF_InData* in_data, PF_OutData* out_data, const char* name, int version, const char* error) {
    if (in_data->pica_basicP != nullptr) {
        in_data->pica_basicP->ReleaseSuite(name, version);
        return PF_Err_NONE;
    }
    showError(in_data, out_data, error != nullptr ? error : "Not able to release AEFX Suite.");
    return PF_Err_BAD_CALLBACK_PARAM;
}

PF_Err AcquireDrawbotSuites(PF_InData* in_data, PF_OutData* out_data, DRAWBOT_Suites* suites) {
    if (suites == nullptr) {
        showError(in_data, out_data, "NULL suite pointer passed to AEFX_AcquireDrawbotSuites");
        return PF_Err_UNRECOGNIZED_PARAM_TYPE;
    }
    PF_Err error = acquireMember(in_data, out_data, kDrawSuite, suites->draw);
    if (error == PF_Err_NONE)
        error = acquireMember(in_data, out_data, kSupplierSuite, suites->supplier);
    if (error == PF_Err_NONE)
        error = acquireMember(in_data, out_data, kSurfaceSuite, suites->surface);
    if (error == PF_Err_NONE)
        error = acquireMember(in_data, out_data, kPathSuite, suites->path);
    return error;
}

PF_Err ReleaseDrawbotSuites(PF_InData* in_data, PF_OutData* out_data) {
    for (const SuiteId& id : {kDrawSuite, kSupplierSuite, kSurfaceSuite, kPathSuite})
        ReleaseSuite(in_data, out_data, id.name, id.version, nullptr);
    return PF_Err_NONE;
}

} // namespace Ombrique::GaussianBlur
