#include "common/files/WholeFile.h"

#include <boost/filesystem/operations.hpp>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <vector>

#include "platform/FileSystem.h"
#include "platform/ReplacementFile.h"

namespace Norvik::Common {

void CopyWhole(const boost::filesystem::path& source, const boost::filesystem::path& target) {
  const Platform::FileDescriptor from = Platform::OpenRegularFile(source.string());
  Platform::ReplacementFile to(target.string());
  std::vector<char> buffer(65536);
  while (const std::size_t length = Platform::ReadFull(from, buffer.data(), buffer.size())) {
    Platform::WriteAll(to.Descriptor(), buffer.data(), length);
  }
  to.Commit();
}

void MoveWhole(const boost::filesystem::path& source, const boost::filesystem::path& target) {
  // Before the rename, or a crash could leave the new name with no content.
  Platform::SyncFile(Platform::OpenRegularFile(source.string()));
  if (std::rename(source.c_str(), target.c_str()) == 0) {
    Platform::SyncFolder(target.parent_path().string());
    return;
  }
  if (errno != EXDEV) Platform::RaiseSystemError(errno, target.string());
  CopyWhole(source, target);
  boost::filesystem::remove(source);
}

}  // namespace Norvik::Common
