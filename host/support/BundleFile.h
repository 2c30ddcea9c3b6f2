#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace Norvik::Host {

/// A file of a support archive.
struct BundleFile {
  enum class Kind {
    JSON,      ///< of the agent's own making, or its configuration
    DOCUMENT,  ///< of the machine inventory
    LOG,       ///< text, of which the beginning may be cut off
  };

  std::string name;  ///< with "/" between folders
  Kind kind;
  std::string content;
  std::size_t cut = 0;  ///< bytes of a log that are cut off before its content
};

/// Something that is not in the archive, or not all of it.
struct BundleNote {
  std::string name;
  std::string why;
};

/// How deep JSON may nest; what is deeper is a text.
inline constexpr std::size_t MAX_NESTING = 64;

/// What goes into a support archive.
struct BundleContent {
  std::vector<BundleFile> files;
  std::vector<BundleNote> leftOut;
};

}  // namespace Norvik::Host
