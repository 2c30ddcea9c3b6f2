#include "common/files/FilePipeline.h"

#include <boost/filesystem/operations.hpp>
#include <boost/format.hpp>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <exception>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "common/action/InventorySchedules.h"
#include "common/database/DataBase.h"
#include "common/files/Archive.h"
#include "common/files/FileSealer.h"
#include "common/files/Paths.h"
#include "common/log/Logger.h"
#include "common/progress/Progress.h"
#include "platform/FileSystem.h"
#include "platform/ReplacementFile.h"

namespace Norvik::Common {

namespace {

namespace fs = boost::filesystem;

// Both replace the target whole or not at all, have its content on the disk, and throw a subclass
// of `std::exception` on failure. The source must be a regular file.

void CopyWhole(const fs::path& source, const fs::path& target) {
  const Platform::FileDescriptor from = Platform::OpenRegularFile(source.string());
  Platform::ReplacementFile to(target.string());
  std::vector<char> buffer(65536);
  while (const std::size_t length = Platform::ReadFull(from, buffer.data(), buffer.size())) {
    Platform::WriteAll(to.Descriptor(), buffer.data(), length);
  }
  to.Commit();
}

/// Renames; across file systems copies and then removes the source.
void MoveWhole(const fs::path& source, const fs::path& target) {
  // Before the rename, or a crash could leave the new name with no content.
  Platform::SyncFile(Platform::OpenRegularFile(source.string()));
  if (std::rename(source.c_str(), target.c_str()) == 0) {
    Platform::SyncFolder(target.parent_path().string());
    return;
  }
  if (errno != EXDEV) Platform::ThrowSystemError(errno, target.string());
  CopyWhole(source, target);
  fs::remove(source);
}

/// Runs one step. False if it throws, which is logged.
template <class Step>
bool Try(const char* what, const fs::path& source, Step step) {
  try {
    step();
    return true;
  } catch (const std::exception& error) {
    NORVIK_ERROR(boost::format("Unable to %1% the file %2%: %3%") % what % source.string() %
                 error.what());
    return false;
  }
}

void RecordDocument() {
  try {
    // Cut to the 32 bits that the table's numbers have.
    V2::DataBase::SetDataTable(LAST_DOCUMENT_KEY, static_cast<int>(std::time(nullptr)));
  } catch (const std::exception& error) {
    NORVIK_WARNING(boost::format("The time of the inventory is not recorded: %1%") % error.what());
  }
}

class DefaultFilePipeline : public IFilePipeline {
 public:
  bool Compress(const fs::path& source, const fs::path& target) override {
    return Try("compress", source, [&] { WriteArchive(source, target); });
  }

  bool Encrypt(const fs::path& source, const fs::path& target) override {
    return Try("encrypt", source, [&] {
      FileSealer(Paths(Paths::DATA, true).AppData() / "keys").Seal(source, target);
    });
  }

  bool Copy(const fs::path& source, const fs::path& target) override {
    return Try("copy", source, [&] { CopyWhole(source, target); });
  }

  bool MoveToOutbox(const fs::path& file, const boost::optional<bool>& incremental) override {
    const bool moved = Try("move to the outbox", file, [&] {
      MoveWhole(file, Paths(Paths::OUTBOX, true).AppData() / file.filename());
    });
    if (moved) {
      const char* const kind = incremental.get_value_or(false) ? " (incremental)" : "";
      NORVIK_DETAIL(boost::format("%1%%2% waits in the outbox") % file.filename().string() % kind);
    }
    return moved;
  }
};

struct Current {
  std::mutex mutex;
  std::shared_ptr<IFilePipeline> pipeline = std::make_shared<DefaultFilePipeline>();
};

Current& TheCurrent() {
  static Current current;
  return current;
}

}  // namespace

IFilePipeline::~IFilePipeline() = default;

std::shared_ptr<IFilePipeline> GetFilePipeline() {
  Current& current = TheCurrent();
  const std::lock_guard<std::mutex> lock(current.mutex);
  return current.pipeline;
}

void SetFilePipeline(std::shared_ptr<IFilePipeline> pipeline) {
  if (!pipeline) pipeline = std::make_shared<DefaultFilePipeline>();
  Current& current = TheCurrent();
  const std::lock_guard<std::mutex> lock(current.mutex);
  std::swap(current.pipeline, pipeline);
}

bool CompressFile(const fs::path& source, const fs::path& target) {
  const bool done = GetFilePipeline()->Compress(source, target);
  ReportDocument({DocumentStep::COMPRESS, done, source, target, {}});
  return done;
}

bool AgentEncryptFile(const fs::path& source, const fs::path& target) {
  const bool done = GetFilePipeline()->Encrypt(source, target);
  ReportDocument({DocumentStep::ENCRYPT, done, source, target, {}});
  return done;
}

bool CopyFileToDestination(const fs::path& source, const fs::path& target) {
  const bool done = GetFilePipeline()->Copy(source, target);
  ReportDocument({DocumentStep::COPY, done, source, target, {}});
  return done;
}

bool MoveToOutbox(fs::path&& file, boost::optional<bool> incremental) {
  const fs::path target = Paths(Paths::OUTBOX, false).AppData() / file.filename();
  boost::system::error_code absent;
  const std::uintmax_t bytes = fs::file_size(file, absent);
  const bool done = GetFilePipeline()->MoveToOutbox(file, incremental);
  if (done && incremental) RecordDocument();
  ReportDocument({DocumentStep::MOVE, done, file, target, incremental, absent ? 0 : bytes});
  return done;
}

}  // namespace Norvik::Common
