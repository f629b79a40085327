#pragma once

#include <glbinding/Function.h>

#include <functional>
#include <utility>

namespace Ombrique::Tests {

/// Counts the calls of one OpenGL function, for as long as it lives: RecordedCalls(glbinding::Binding::Flush).
template <typename... Arguments> class RecordedCalls {
public:
    /// `look` sees the arguments of each call.
    explicit RecordedCalls(glbinding::Function<void, Arguments...>& function,
                           std::function<void(Arguments...)> look = nullptr)
        : mFunction(function) {
        mFunction.addCallbackMask(glbinding::CallbackMask::Before);
        mFunction.setBeforeCallback([this, look = std::move(look)](Arguments... arguments) {
            ++mCount;
            if (look)
                look(arguments...);
        });
    }
    RecordedCalls(const RecordedCalls&) = delete;
    RecordedCalls& operator=(const RecordedCalls&) = delete;
    ~RecordedCalls() { mFunction.clearBeforeCallback(); }

    int count() const { return mCount; }

private:
    glbinding::Function<void, Arguments...>& mFunction;
    int mCount = 0;
};

} // namespace Ombrique::Tests
