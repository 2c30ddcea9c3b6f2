#pragma once

#include <boost/filesystem/path.hpp>

namespace Norvik::Cli {

/// A new temporary folder that only this user can enter, removed with its content.
class PrivateFolder {
 public:
  /// Throws `std::runtime_error` if it cannot be made.
  PrivateFolder();
  PrivateFolder(const PrivateFolder&) = delete;
  PrivateFolder& operator=(const PrivateFolder&) = delete;
  ~PrivateFolder();
  const boost::filesystem::path& Path() const { return path_; }

 private:
  boost::filesystem::path path_;
};

}  // namespace Norvik::Cli
