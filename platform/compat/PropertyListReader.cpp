#include "platform/compat/PropertyListReader.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <system_error>

#include "platform/FileSystem.h"

namespace Norvik::Platform {

namespace {

constexpr std::size_t MAX_FILE = std::size_t{256} << 20;

using Memory = std::unique_ptr<void, decltype(&::free)>;

}  // namespace

PropertyList ReadPropertyList(std::string_view bytes) {
  if (bytes.size() > MAX_FILE || !IsBoundedPropertyList(bytes)) return nullptr;
  plist_t root = nullptr;
  const auto read = IsBinaryPropertyList(bytes) ? &plist_from_bin : &plist_from_xml;
  read(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &root);
  return PropertyList(root);
}

std::string ReadFileBytes(const std::string& path) {
  // Without waiting, or a named pipe in the file's place would block the caller.
  const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  struct stat status {};
  if (!file.IsOpen() || ::fstat(file.Get(), &status) != 0 || !S_ISREG(status.st_mode)) return {};
  const auto size = static_cast<std::size_t>(status.st_size);
  if (size > MAX_FILE) return {};
  std::string bytes(size, '\0');
  try {
    bytes.resize(ReadFull(file, bytes.data(), size));
  } catch (const std::system_error&) {
    return {};  // as if it were not there
  }
  return bytes;
}

void ForEachKey(plist_t dictionary, const std::function<void(const char*, plist_t)>& take) {
  if (plist_get_node_type(dictionary) != PLIST_DICT) return;
  plist_dict_iter position = nullptr;
  plist_dict_new_iter(dictionary, &position);
  const Memory owner(position, &::free);
  while (true) {
    char* key = nullptr;
    plist_t value = nullptr;
    plist_dict_next_item(dictionary, position, &key, &value);
    const Memory keyOwner(key, &::free);
    if (!key || !value) return;
    take(key, value);
  }
}

void ForEachElement(plist_t array, const std::function<void(plist_t)>& take) {
  if (plist_get_node_type(array) != PLIST_ARRAY) return;
  plist_array_iter position = nullptr;
  plist_array_new_iter(array, &position);
  const Memory owner(position, &::free);
  while (true) {
    plist_t value = nullptr;
    plist_array_next_item(array, position, &value);
    if (!value) return;
    take(value);
  }
}

std::string TextOf(plist_t value) {
  if (!value || plist_get_node_type(value) != PLIST_STRING) return {};
  std::uint64_t length = 0;
  const char* const text = plist_get_string_ptr(value, &length);
  return text ? std::string(text, length) : std::string();
}

}  // namespace Norvik::Platform
