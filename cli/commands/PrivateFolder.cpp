#include "cli/commands/PrivateFolder.h"

#include <stdlib.h>

#include <boost/filesystem/operations.hpp>
#include <stdexcept>

namespace Norvik::Cli {

namespace fs = boost::filesystem;

PrivateFolder::PrivateFolder() {
  std::string pattern = (fs::temp_directory_path() / "norvik-XXXXXX").string();
  if (!::mkdtemp(pattern.data())) throw std::runtime_error("cannot make " + pattern);
  path_ = pattern;
}

PrivateFolder::~PrivateFolder() {
  boost::system::error_code ignored;
  fs::remove_all(path_, ignored);
}

}  // namespace Norvik::Cli
