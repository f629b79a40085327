#include "Hosts/Bundle/PropertyList.h"

#include "Hosts/Bundle/BundleError.h"

#include <plist/plist.h>

#include <fstream>
#include <iterator>
#include <limits>
#include <utility>

namespace Ombrique::Hosts {

namespace {

/// Far more than any bundle's property lists have.
constexpr std::size_t kMostBytes = 1 << 20;

std::string contentOf(const std::filesystem::path& file) {
    std::error_code error;
    if (!std::filesystem::exists(file, error))
        throw BundleError(file.string() + ": no such file");
    std::ifstream stream(file, std::ios::binary);
    std::string content(kMostBytes + 1, '\0');
    stream.read(content.data(), static_cast<std::streamsize>(content.size()));
    content.resize(static_cast<std::size_t>(stream.gcount()));
    if (stream.bad() || !stream.eof() || !std::filesystem::is_regular_file(file, error))
        throw BundleError(file.string() + ": can't be read" +
                          (content.size() > kMostBytes ? ", it is larger than a mebibyte" : ""));
    return content;
}

} // namespace

void PropertyList::Free::operator()(void* root) const { plist_free(root); }

PropertyList::PropertyList(std::filesystem::path file) : mFile(std::move(file)) {
    const std::string content = contentOf(mFile);
    plist_t root = nullptr;
    plist_from_memory(content.data(), static_cast<std::uint32_t>(content.size()), &root);
    mRoot.reset(root);
    if (!root || plist_get_node_type(root) != PLIST_DICT)
        fail("no property list with a dictionary at its root");
}

void PropertyList::fail(const std::string& what) const { throw BundleError(mFile.string() + ": " + what); }

void* PropertyList::find(const char* key, const char* kind, int type) const {
    plist_t node = plist_dict_get_item(mRoot.get(), key);
    if (!node)
        fail("the key " + std::string(key) + " is missing");
    if (plist_get_node_type(node) != type)
        fail("the key " + std::string(key) + " isn't " + kind);
    return node;
}

std::string PropertyList::string(const char* key) const {
    std::uint64_t length = 0;
    const char* const text = plist_get_string_ptr(find(key, "a string", PLIST_STRING), &length);
    if (length == 0)
        fail("the key " + std::string(key) + " is empty");
    return {text, length};
}

std::string PropertyList::stringOrEmpty(const char* key) const {
    return plist_dict_get_item(mRoot.get(), key) ? string(key) : std::string();
}

std::uint32_t PropertyList::integer(const char* key) const {
    std::uint64_t value = 0;
    plist_get_uint_val(find(key, "an integer", PLIST_UINT), &value);
    if (value > std::numeric_limits<std::uint32_t>::max())
        fail("the key " + std::string(key) + " isn't an integer of 32 bits");
    return static_cast<std::uint32_t>(value);
}

} // namespace Ombrique::Hosts
