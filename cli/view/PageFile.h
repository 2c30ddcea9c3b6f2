#pragma once

#include <boost/filesystem/path.hpp>
#include <cstdint>
#include <string>
#include <vector>

namespace Norvik::Cli {

/// What is in a page.
struct PageContent {
  std::string title;                          ///< UTF-8
  std::string information;                    ///< JSON of what the page shows beside the documents
  std::vector<const std::string*> documents;  ///< JSON; not owned, none is null
};

/// Writes one HTML file that needs no other and runs only the script of `ViewerBundle.h`. Replaces
/// the file whole or not at all, mode 0600; nothing is left if this process is killed meanwhile.
/// The memory does not depend on the documents' sizes. Returns the size in bytes. Throws
/// `std::runtime_error`, with the file's name in its text.
std::uintmax_t WritePage(const boost::filesystem::path& file, const PageContent& content);

}  // namespace Norvik::Cli
