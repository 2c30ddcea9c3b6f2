#pragma once

#include <memory>
#include <string>

namespace Norvik::Platform {

/// A property list file, XML or binary, whose root is a dictionary. Any other file, or one that
/// cannot be read, has no keys. The file is read once, by the constructor.
class PropertyListFile {
 public:
  explicit PropertyListFile(const std::string& path);
  PropertyListFile(const PropertyListFile&) = delete;
  PropertyListFile& operator=(const PropertyListFile&) = delete;
  ~PropertyListFile();

  bool Has(const std::string& key) const;
  /// The text of a key in UTF-8, up to its first NUL; empty if the key is missing or holds no text.
  std::string Text(const std::string& key) const;
  /// The same for the first element of the array under the key.
  std::string FirstText(const std::string& key) const;

 private:
  struct Implementation;
  std::unique_ptr<Implementation> implementation_;
};

}  // namespace Norvik::Platform
