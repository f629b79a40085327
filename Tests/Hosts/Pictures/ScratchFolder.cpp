#include "Tests/Hosts/Pictures/ScratchFolder.h"

#include <cstdlib>
#include <fstream>
#include <iterator>

namespace Ombrique::Tests {

ScratchFolder::ScratchFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "ombrique-test-XXXXXX").string();
    mPath = mkdtemp(pattern.data());
}

ScratchFolder::~ScratchFolder() { std::filesystem::remove_all(mPath); }

std::set<std::string> ScratchFolder::names() const {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(mPath))
        names.insert(entry.path().filename().string());
    return names;
}

std::string readFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void writeFile(const std::string& path, const std::string& content) {
    std::ofstream(path, std::ios::binary) << content;
}

} // namespace Ombrique::Tests
