#pragma once

#include "Platform/HostInterface/HostInterface.h"

#include <cstdint>

/// Two ways to the host's suites. SuiteScoper holds a suite for a scope and throws when the host doesn't have it; the
/// render path uses nothing else. The free functions answer with a code and with a message to the user, for callers
/// that acquire and release in different places.
///
/// Messages reach PF_OutData::return_msg through the host's sprintf, and as its format: a text of the caller's contains
/// no conversion and fits return_msg. Names of suites are literals: the functions keep no copy. Everything here may be
/// called on any thread on which the host calls the plug-in.
namespace Ombrique::GaussianBlur {

/// Holds the suite `T` from construction to destruction, and releases it under the name and version under which it was
/// acquired. Scopers nest like the scopes that they stand in.
template <typename T> class SuiteScoper {
public:
    /// Acquires from the host that gave `in_data`, and throws the 32-bit A_Err_MISSING_SUITE when it refuses. If
    /// `out_data` isn't null, a refusal is also shown to the user, as `errorMessage` or as a text of the scoper's own.
    ///
    /// The host's code alone decides: one that reports success with a null table gives a scoper whose mSuite is null.
    SuiteScoper(const PF_InData* in_data, const char* suiteName, int suiteVersion, PF_OutData* out_data = nullptr,
                const char* errorMessage = nullptr);
    /// The same for callers that have no `in_data`; throws without a message.
    SuiteScoper(SPBasicSuite* basicSuite, const char* suiteName, int suiteVersion);
    /// Releases the suite, if there is one; what the host answers is dropped.
    ~SuiteScoper();

    SuiteScoper(const SuiteScoper&) = delete;
    SuiteScoper& operator=(const SuiteScoper&) = delete;

    /// For calls of the suite's functions: mSuite, or the thrown A_Err_MISSING_SUITE where that is null.
    const T* operator->() const {
        if (mSuite == nullptr)
            throw std::int32_t{A_Err_MISSING_SUITE};
        return mSuite;
    }

    /// The host's table, through which its functions are called. Valid as long as the scoper.
    const T* mSuite;

private:
    SPBasicSuite* mBasicSuite;
    const char* mSuiteName;
    std::int32_t mSuiteVersion;
};

/// Stores the table of suite `name` at `suite`, which must hold null before, and returns PF_Err_NONE. The table alone
/// decides: whatever code the host returns, a null table is a failure, and so is a host without SPBasicSuite. A failure
/// is shown to the user, as `error` or, where that is null, as a text with name and version, and returns
/// PF_Err_BAD_CALLBACK_PARAM.
PF_Err AcquireSuite(PF_InData* in_data, PF_OutData* out_data, const char* name, int version, const char* error,
                    void** suite);

/// Releases what AcquireSuite acquired; the host's answer is ignored. Fails only where the host has no SPBasicSuite:
/// shows the user `error`, or a text of its own where that is null, and returns PF_Err_BAD_CALLBACK_PARAM.
PF_Err ReleaseSuite(PF_InData* in_data, PF_OutData* out_data, const char* name, int version, const char* error);

/// Acquires the four suites of the drawing family, in the order of the members of `suites`, and stops at the first
/// failure, which it returns as AcquireSuite does; that member is null then, the later ones are untouched, and the
/// earlier ones stay acquired. For null `suites` it shows a message and returns PF_Err_UNRECOGNIZED_PARAM_TYPE.
PF_Err AcquireDrawbotSuites(PF_InData* in_data, PF_OutData* out_data, DRAWBOT_Suites* suites);

/// Releases the four suites of the drawing family. Always PF_Err_NONE: a host without SPBasicSuite gets the message of
/// ReleaseSuite, and no error.
PF_Err ReleaseDrawbotSuites(PF_InData* in_data, PF_OutData* out_data);

namespace Detail {

/// The part of SuiteScoper's constructors that doesn't depend on the suite: the acquired table, or the thrown
/// A_Err_MISSING_SUITE. A null `basicSuite` is a host that refuses. `in_data` is read only where `out_data` isn't null.
const void* acquireOrThrow(SPBasicSuite* basicSuite, const char* name, int version, const PF_InData* in_data = nullptr,
                           PF_OutData* out_data = nullptr, const char* errorMessage = nullptr);

} // namespace Detail

template <typename T>
SuiteScoper<T>::SuiteScoper(const PF_InData* in_data, const char* suiteName, int suiteVersion, PF_OutData* out_data,
                            const char* errorMessage)
    : mSuite(static_cast<const T*>(
          Detail::acquireOrThrow(in_data->pica_basicP, suiteName, suiteVersion, in_data, out_data, errorMessage))),
      mBasicSuite(in_data->pica_basicP), mSuiteName(suiteName), mSuiteVersion(suiteVersion) {}

template <typename T>
SuiteScoper<T>::SuiteScoper(SPBasicSuite* basicSuite, const char* suiteName, int suiteVersion)
    : mSuite(static_cast<const T*>(Detail::acquireOrThrow(basicSuite, suiteName, suiteVersion))),
      mBasicSuite(basicSuite), mSuiteName(suiteName), mSuiteVersion(suiteVersion) {}

template <typename T> SuiteScoper<T>::~SuiteScoper() {
    if (mSuite != nullptr)
        mBasicSuite->ReleaseSuite(mSuiteName, mSuiteVersion);
}

} // namespace Ombrique::GaussianBlur
