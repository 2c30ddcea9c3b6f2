#pragma once

#include <stdlib.h>

#include <boost/filesystem/operations.hpp>
#include <stdexcept>
#include <string>

namespace Norvik::Tests {

/// A new empty folder, removed with its content at the end of the scope.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string pattern =
        (boost::filesystem::temp_directory_path() / "norvik-test-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) {
      throw std::runtime_error("cannot make a temporary folder like " + pattern);
    }
    path_ = boost::filesystem::canonical(pattern);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder() {
    boost::system::error_code ignored;
    boost::filesystem::remove_all(path_, ignored);
  }

  const boost::filesystem::path& Path() const { return path_; }
  boost::filesystem::path operator/(const boost::filesystem::path& name) const {
    return path_ / name;
  }

 private:
  boost::filesystem::path path_;
};

}  // namespace Norvik::Tests
