#pragma once

#include <boost/filesystem/path.hpp>
#include <memory>

#include "host/data/DataFolder.h"

namespace Norvik::Host {

/// A copy of a data folder to try things on, removed at its end: the database as it stands now, the
/// identity, the configuration, the public keys, and the documents. Private keys stay where they
/// are, and so does the log. The original may be in use by an agent, or not exist yet.
class DataFolderCopy {
 public:
  /// Raises a subclass of `std::exception` if something cannot be copied.
  explicit DataFolderCopy(const boost::filesystem::path& original);
  DataFolderCopy(const DataFolderCopy&) = delete;
  DataFolderCopy& operator=(const DataFolderCopy&) = delete;
  ~DataFolderCopy();

  const boost::filesystem::path& Path() const { return path_; }

 private:
  void CopyFrom(const boost::filesystem::path& original) const;

  boost::filesystem::path path_;
  std::unique_ptr<const DataFolderLock> lock_;  ///< tells that the copy is in use
};

/// Removes the copies in a data folder whose process was killed. What cannot be removed stays.
void RemoveLeftCopies(const boost::filesystem::path& dataFolder);

}  // namespace Norvik::Host
