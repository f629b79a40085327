#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>

namespace Ombrique::Tests {

/// An empty folder for one test, removed at its end.
class ScratchFolder {
public:
    ScratchFolder() {
        mPath = mkdtemp((std::filesystem::temp_directory_path() / "ombrique-test-XXXXXX").string().data());
    }
    ~ScratchFolder() { std::filesystem::remove_all(mPath); }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    /// A file in the folder, as the program takes it.
    std::string operator/(const std::string& name) const { return (mPath / name).string(); }
    /// The names of all that is in it, hidden files too.
    std::set<std::string> names() const {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(mPath))
            names.insert(entry.path().filename().string());
        return names;
    }

private:
    std::filesystem::path mPath;
};

inline std::string readFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline void writeFile(const std::string& path, const std::string& content) {
    std::ofstream(path, std::ios::binary) << content;
}

} // namespace Ombrique::Tests
