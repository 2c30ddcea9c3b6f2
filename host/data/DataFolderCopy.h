#pragma once

#include <boost/filesystem/path.hpp>
#include <memory>

#include "host/data/DataFolder.h"

namespace Norvik::Host {

/// A temporary copy of a data folder, removed by the destructor: the current database, the
/// identity, the configuration, the public keys and the documents, but neither private keys nor the
/// log. The original may be in use by an agent, or not exist yet.
class DataFolderCopy {
 public:
  /// Throws a subclass of `std::exception` if something cannot be copied.
  explicit DataFolderCopy(const boost::filesystem::path& original);
  DataFolderCopy(const DataFolderCopy&) = delete;
  DataFolderCopy& operator=(const DataFolderCopy&) = delete;
  ~DataFolderCopy();

  const boost::filesystem::path& Path() const { return path_; }

 private:
  void CopyFrom(const boost::filesystem::path& original) const;

  boost::filesystem::path path_;
  std::unique_ptr<const DataFolderLock> lock_;  ///< marks the copy as in use
};

/// Removes the copies in a data folder whose process was killed. Copies that cannot be removed
/// stay, without an error.
void RemoveLeftCopies(const boost::filesystem::path& dataFolder);

}  // namespace Norvik::Host
