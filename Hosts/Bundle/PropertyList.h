#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

namespace Ombrique::Hosts {

/// A property list file (XML or binary) whose root is a dictionary. All errors are BundleErrors that begin with the
/// file.
class PropertyList {
public:
    explicit PropertyList(std::filesystem::path file);

    /// The value of `key`, which must be there and be a string that isn't empty.
    std::string string(const char* key) const;
    /// The same, but an empty text where the key is missing.
    std::string stringOrEmpty(const char* key) const;
    /// The value of `key`, which must be there and be an integer of 32 bits without a sign.
    std::uint32_t integer(const char* key) const;

    /// Throws an error about this file.
    [[noreturn]] void fail(const std::string& what) const;

private:
    struct Free {
        void operator()(void* root) const;
    };

    void* find(const char* key, const char* kind, int type) const;

    std::filesystem::path mFile;
    std::unique_ptr<void, Free> mRoot;
};

} // namespace Ombrique::Hosts
