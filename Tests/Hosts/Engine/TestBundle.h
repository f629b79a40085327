#pragma once

#include <filesystem>
#include <string>

/// A bundle folder of the tests' own plug-in, written whole and then perhaps spoilt by a test; gone when the object
/// ends.
class TestBundle {
public:
    TestBundle();
    ~TestBundle();
    TestBundle(const TestBundle&) = delete;
    TestBundle& operator=(const TestBundle&) = delete;

    const std::filesystem::path& folder() const { return mFolder; }
    /// Replaces `from`, which must be there, in a file of the bundle.
    void edit(const std::string& file, const std::string& from, const std::string& to) const;

private:
    std::filesystem::path mFolder;
};
