#pragma once

#include <boost/filesystem/path.hpp>
#include <boost/optional.hpp>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "common/files/FilePipeline.h"

namespace Norvik::Cli {

/// A step that a document has taken towards the outbox.
struct PipelineStep {
  enum Kind { COMPRESS, ENCRYPT, COPY, MOVE };

  Kind kind;
  bool done;
  boost::filesystem::path source;
  boost::filesystem::path target;
  boost::optional<bool> incremental;  ///< of a move

  const char* Name() const;
};

/// Gets each document while it can still be read, just before it is compressed. Must not raise.
using DocumentVisitor = std::function<void(const boost::filesystem::path& document)>;

/// Keeps what the steps of another pipeline answer.
class WatchedPipeline : public Common::IFilePipeline {
 public:
  /// @param onDocument may be empty
  explicit WatchedPipeline(std::shared_ptr<Common::IFilePipeline> inner,
                           DocumentVisitor onDocument = {});

  bool Compress(const boost::filesystem::path& source,
                const boost::filesystem::path& target) override;
  bool Encrypt(const boost::filesystem::path& source,
               const boost::filesystem::path& target) override;
  bool Copy(const boost::filesystem::path& source, const boost::filesystem::path& target) override;
  bool MoveToOutbox(const boost::filesystem::path& file,
                    const boost::optional<bool>& incremental) override;

  std::vector<PipelineStep> Steps() const;

 private:
  bool Keep(PipelineStep step);

  const std::shared_ptr<Common::IFilePipeline> inner_;
  const DocumentVisitor onDocument_;
  mutable std::mutex mutex_;
  std::vector<PipelineStep> steps_;
};

/// Watches the process's pipeline for a scope.
class PipelineWatch {
 public:
  explicit PipelineWatch(DocumentVisitor onDocument = {});
  PipelineWatch(const PipelineWatch&) = delete;
  PipelineWatch& operator=(const PipelineWatch&) = delete;
  ~PipelineWatch();

  std::vector<PipelineStep> Steps() const { return watched_->Steps(); }

 private:
  std::shared_ptr<Common::IFilePipeline> inner_;
  std::shared_ptr<WatchedPipeline> watched_;
};

}  // namespace Norvik::Cli
