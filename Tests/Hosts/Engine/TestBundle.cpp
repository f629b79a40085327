#include "Tests/Hosts/Engine/TestBundle.h"

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace fs = std::filesystem;

TestBundle::TestBundle() {
    std::string pattern = (fs::temp_directory_path() / "ombrique-XXXXXX").string();
    if (!mkdtemp(pattern.data()))
        throw std::runtime_error("no temporary folder");
    mFolder = pattern;
    fs::copy(TEST_BUNDLE, mFolder, fs::copy_options::recursive);
}

TestBundle::~TestBundle() {
    std::error_code error;
    fs::remove_all(mFolder, error);
}

void TestBundle::edit(const std::string& file, const std::string& from, const std::string& to) const {
    std::stringstream content;
    content << std::ifstream(mFolder / file).rdbuf();
    std::string text = content.str();
    text.replace(text.find(from), from.size(), to); // throws where it isn't there
    std::ofstream(mFolder / file) << text;
}
