#pragma once

#include <boost/filesystem/path.hpp>
#include <boost/optional.hpp>
#include <memory>

#include "common/Api.h"

namespace Norvik::Common {

/// The steps from a document to a file in the outbox. Each answers whether it worked, logs the
/// reason if not, and leaves its target as it was before: a target changes whole or not at all.
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

/// The pipeline that the free functions below go through, and its replacement: a host puts itself
/// in between to see what leaves, a test to make a step fail. Never null.
NORVIK_COMMON_API std::shared_ptr<IFilePipeline> GetFilePipeline();
NORVIK_COMMON_API void SetFilePipeline(std::shared_ptr<IFilePipeline> pipeline);

/// Writes the source as the one deflated entry of a zip archive, under its file name.
NORVIK_COMMON_API bool CompressFile(const boost::filesystem::path& source,
                                    const boost::filesystem::path& target);
/// Seals the source for the holder of the server's private key (see `FileSealer`).
NORVIK_COMMON_API bool AgentEncryptFile(const boost::filesystem::path& source,
                                        const boost::filesystem::path& target);
/// Copies, replacing the target.
NORVIK_COMMON_API bool CopyFileToDestination(const boost::filesystem::path& source,
                                             const boost::filesystem::path& target);
/// Moves the file to the outbox under its own name, replacing one of that name. `incremental` is
/// empty for documents that have no such kind.
NORVIK_COMMON_API bool MoveToOutbox(boost::filesystem::path&& file,
                                    boost::optional<bool> incremental);

}  // namespace Norvik::Common
