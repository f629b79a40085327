#pragma once

#include <glbinding/Function.h>

#include <tuple>
#include <vector>

namespace Ombrique::Tests {

/// The calls of one OpenGL function, for as long as it lives: RecordedCalls(glbinding::Binding::Flush).
template <typename... Arguments> class RecordedCalls {
public:
    explicit RecordedCalls(glbinding::Function<void, Arguments...>& function) : mFunction(function) {
        mFunction.addCallbackMask(glbinding::CallbackMask::Before);
        mFunction.setBeforeCallback([this](Arguments... arguments) { mCalls.emplace_back(arguments...); });
    }
    RecordedCalls(const RecordedCalls&) = delete;
    ~RecordedCalls() { mFunction.clearBeforeCallback(); }

    /// The arguments of each call.
    const std::vector<std::tuple<Arguments...>>& calls() const { return mCalls; }
    int count() const { return static_cast<int>(mCalls.size()); }

private:
    glbinding::Function<void, Arguments...>& mFunction;
    std::vector<std::tuple<Arguments...>> mCalls;
};

} // namespace Ombrique::Tests
