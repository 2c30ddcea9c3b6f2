#pragma once

#include <memory>
#include <string>

namespace Norvik::Platform {

/// A property list file, XML or binary, whose root is a dictionary. A file that is none, or that
/// cannot be read, has no keys.
class PropertyListFile {
 public:
  explicit PropertyListFile(const std::string& path);
  PropertyListFile(const PropertyListFile&) = delete;
  PropertyListFile& operator=(const PropertyListFile&) = delete;
  ~PropertyListFile();

  bool Has(const std::string& key) const;
  /// The text of a key in UTF-8, up to its first NUL; empty if the key is absent or holds no text.
  std::string Text(const std::string& key) const;
  /// The same of the first element of the key's array.
  std::string FirstText(const std::string& key) const;

 private:
  struct Implementation;
  std::unique_ptr<Implementation> implementation_;
};

}  // namespace Norvik::Platform
