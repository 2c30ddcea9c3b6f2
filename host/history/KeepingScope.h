#pragma once

#include <memory>

#include "common/files/FilePipeline.h"
#include "host/history/DocumentHistory.h"

namespace Norvik::Host {

/// While it exists, what is moved to the outbox is kept in a history, within these limits. At most
/// one at a time.
class KeepingScope {
 public:
  KeepingScope(std::shared_ptr<DocumentHistory> history, const HistoryLimits& limits);
  KeepingScope(const KeepingScope&) = delete;
  KeepingScope& operator=(const KeepingScope&) = delete;
  ~KeepingScope();

 private:
  const std::shared_ptr<Common::IFilePipeline> former_;
};

}  // namespace Norvik::Host
