#pragma once

#include <boost/filesystem/path.hpp>
#include <boost/optional.hpp>
#include <memory>

#include "common/Api.h"

namespace Norvik::Common {

/// The steps that turn a document into a file of the outbox. Each returns whether it succeeded; if
/// not, it logs the reason and leaves its target as it was. A target is replaced whole or not at
/// all. Any thread may call.
class NORVIK_COMMON_API IFilePipeline {
 public:
  virtual ~IFilePipeline();

  virtual bool Compress(const boost::filesystem::path& source,
                        const boost::filesystem::path& target) = 0;
  virtual bool Encrypt(const boost::filesystem::path& source,
                       const boost::filesystem::path& target) = 0;
  virtual bool Copy(const boost::filesystem::path& source,
                    const boost::filesystem::path& target) = 0;
  virtual bool MoveToOutbox(const boost::filesystem::path& file,
                            const boost::optional<bool>& incremental) = 0;

 protected:
  IFilePipeline() = default;
  IFilePipeline(const IFilePipeline&) = default;
  IFilePipeline& operator=(const IFilePipeline&) = default;
};

/// The pipeline that the free functions below use; never null. A host may replace a step, a test
/// may make one fail. Null sets the default one. To see what leaves, listen to the progress: the
/// free functions report each step to it.
NORVIK_COMMON_API std::shared_ptr<IFilePipeline> GetFilePipeline();
NORVIK_COMMON_API void SetFilePipeline(std::shared_ptr<IFilePipeline> pipeline);

/// Writes a zip archive with the source as its one entry (see `WriteArchive`).
NORVIK_COMMON_API bool CompressFile(const boost::filesystem::path& source,
                                    const boost::filesystem::path& target);
/// Encrypts the source for the holder of the server's private key (see `FileSealer`). The keys are
/// those of the folder `keys` in the data folder.
NORVIK_COMMON_API bool AgentEncryptFile(const boost::filesystem::path& source,
                                        const boost::filesystem::path& target);
/// Copies the source, replacing the target.
NORVIK_COMMON_API bool CopyFileToDestination(const boost::filesystem::path& source,
                                             const boost::filesystem::path& target);
/// Moves the file to the outbox under its own name, replacing a file of that name. Its content is
/// on the disk before it gets there. For a machine inventory, records the time in the agent data.
/// @param incremental whether the document is incremental; empty if it has no such kind
NORVIK_COMMON_API bool MoveToOutbox(boost::filesystem::path&& file,
                                    boost::optional<bool> incremental);

}  // namespace Norvik::Common
