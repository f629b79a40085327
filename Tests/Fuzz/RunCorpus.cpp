#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size);

/// Runs a fuzzer's function on each file of a folder, and on a part of it, as libFuzzer begins.
int main(int, char** words) {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(words[1])) {
        std::ifstream file(entry.path(), std::ios::binary);
        const std::string whole{std::istreambuf_iterator<char>(file), {}};
        std::fprintf(stderr, "%s\n", entry.path().c_str()); // the last one is at fault where the process ends
        for (const std::string& input : {whole, whole.substr(0, whole.size() * 2 / 3)})
            LLVMFuzzerTestOneInput(reinterpret_cast<const unsigned char*>(input.data()), input.size());
        ++count;
    }
    std::printf("%d inputs tried\n", count);
    return count > 0 ? 0 : 1;
}
