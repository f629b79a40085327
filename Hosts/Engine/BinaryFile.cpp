#include "Hosts/Engine/BinaryFile.h"

#include "Hosts/Engine/PluginBundle.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <link.h>
#include <vector>

namespace Ombrique::Hosts {

namespace {

using Header = ElfW(Ehdr);
using Segment = ElfW(Phdr);

/// Fills `count` values from `offset` on; whether the file has them.
template <typename Value> bool readAt(std::ifstream& stream, std::uint64_t offset, Value* values, std::size_t count) {
    stream.seekg(static_cast<std::streamoff>(offset));
    stream.read(reinterpret_cast<char*>(values), static_cast<std::streamsize>(count * sizeof(Value)));
    return stream.good();
}

bool sameMachine(const Header& one, const Header& other) {
    return one.e_machine == other.e_machine && one.e_ident[EI_CLASS] == other.e_ident[EI_CLASS] &&
           one.e_ident[EI_DATA] == other.e_ident[EI_DATA];
}

/// Whether all that the headers speak of lies within the file. Linkers put the table of sections last, so that it is
/// missed wherever a file was cut off.
bool isWhole(std::ifstream& stream, const Header& header, std::uint64_t size) {
    std::vector<Segment> segments(header.e_phnum);
    return header.e_phentsize == sizeof(Segment) && readAt(stream, header.e_phoff, segments.data(), segments.size()) &&
           header.e_shoff + std::uint64_t{header.e_shnum} * header.e_shentsize <= size &&
           std::ranges::all_of(segments, [size](const Segment& segment) {
               return segment.p_filesz <= size && segment.p_offset <= size - segment.p_filesz;
           });
}

} // namespace

void requireLoadable(const std::filesystem::path& file) {
    const auto fail = [&file](const char* what) { throw BundleError(file.string() + ": " + what); };
    std::error_code error;
    if (!std::filesystem::exists(file, error))
        fail("no such file");
    std::ifstream stream(file, std::ios::binary);
    if (!stream || !std::filesystem::is_regular_file(file, error))
        fail("can't be read");
    Header header{};
    if (!readAt(stream, 0, &header, 1) || std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0)
        fail("damaged: no binary of this system");
    Header own{};
    if (std::ifstream self("/proc/self/exe", std::ios::binary); readAt(self, 0, &own, 1) && !sameMachine(header, own))
        fail("made for another kind of processor");
    if (!isWhole(stream, header, std::filesystem::file_size(file, error)))
        fail("damaged: part of the file is missing");
}

} // namespace Ombrique::Hosts
