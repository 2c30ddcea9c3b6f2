#pragma once

#include <boost/filesystem/path.hpp>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "host/actions/Clock.h"

namespace Norvik::Host {

/// A file that waits to be sent.
struct OutboxFile {
  boost::filesystem::path path;
  std::string name;       ///< the name that its writer gave it
  std::string extension;  ///< with its dot
};

/// The files of the outbox. Their writer uses the same name for each document of a kind, so a new
/// one would replace one that is not sent yet; and a server that lacks one document cannot use
/// those that build on it. So every file gets a unique name as soon as it is seen: a number of 16
/// digits that grows, "~" and its name. Safe on any thread; one object per folder.
class OutboxFiles {
 public:
  /// @param extensions of the files to send, with their dot
  /// @param clock      its time of day makes the numbers
  OutboxFiles(boost::filesystem::path folder, std::vector<std::string> extensions,
              std::shared_ptr<const Clock> clock);

  /// Gives each new file its unique name. A failure is logged.
  void NumberNewFiles();
  /// All files that have a number, oldest first. After a failure, which is logged, the list is
  /// empty.
  std::vector<OutboxFile> List() const;

 private:
  std::uint64_t NextNumber();

  const boost::filesystem::path folder_;
  const std::vector<std::string> extensions_;
  const std::shared_ptr<const Clock> clock_;
  std::mutex mutex_;
  std::uint64_t lastNumber_ = 0;
};

}  // namespace Norvik::Host
