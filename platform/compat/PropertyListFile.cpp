#include "platform/PropertyListFile.h"

#include "platform/compat/PropertyListReader.h"

namespace Norvik::Platform {

namespace {

std::string UpToNul(const std::string& text) { return text.substr(0, text.find('\0')); }

}  // namespace

struct PropertyListFile::Implementation {
  PropertyList root;

  plist_t At(const std::string& key) const {
    return root ? plist_dict_get_item(root.get(), key.c_str()) : nullptr;
  }
};

PropertyListFile::PropertyListFile(const std::string& path)
    : implementation_(std::make_unique<Implementation>()) {
  implementation_->root = ReadPropertyList(ReadFileBytes(path));
}

PropertyListFile::~PropertyListFile() = default;

bool PropertyListFile::Has(const std::string& key) const { return implementation_->At(key); }

std::string PropertyListFile::Text(const std::string& key) const {
  return UpToNul(TextOf(implementation_->At(key)));
}

std::string PropertyListFile::FirstText(const std::string& key) const {
  const plist_t value = implementation_->At(key);
  if (!value || plist_get_node_type(value) != PLIST_ARRAY) return {};
  return UpToNul(TextOf(plist_array_get_item(value, 0)));
}

}  // namespace Norvik::Platform
