#pragma once

#include <boost/filesystem/path.hpp>
#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

namespace Norvik::Host {

/// A file that waits to be sent.
struct OutboxFile {
  boost::filesystem::path path;
  std::string name;       ///< what its maker called it
  std::string extension;  ///< with its dot
};

/// The files of the outbox. Their maker calls each by the name of the one before, which would take
/// the place of that one unsent; and a server that lacks one document can do nothing with those
/// that build on it. So every file gets a name of its own as soon as it is seen: a number that
/// grows, "~" and its name. Safe on any thread; one object a folder.
class OutboxFiles {
 public:
  /// @param extensions of the files that are to be sent, with their dot
  OutboxFiles(boost::filesystem::path folder, std::vector<std::string> extensions);

  /// Gives each new file its own name. A failure is logged.
  void Number();
  /// All that wait and have a number, the oldest first. A failure is logged and gives none.
  std::vector<OutboxFile> List() const;

 private:
  std::uint64_t NextNumber();

  const boost::filesystem::path folder_;
  const std::vector<std::string> extensions_;
  std::mutex mutex_;
  std::uint64_t lastNumber_ = 0;
};

}  // namespace Norvik::Host
