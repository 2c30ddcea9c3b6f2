#pragma once

#include <boost/filesystem/path.hpp>
#include <chrono>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "platform/SystemChanges.h"

namespace Norvik::Host {

/// The program at the beginning of each pipeline of a shell line; not the filters after a "|".
std::vector<std::string> ProgramsOf(const std::string& line);

/// Records the tools that shell lines start, as long as it is the `SystemChanges` in force: before
/// a line runs, a script takes the place of each tool at its beginning. It runs the tool once for
/// each call and answers from the recording. What /bin has is the same on every machine and is not
/// recorded. Sets PATH of this process as long as it lives.
class ToolRecorder final : public Platform::RealSystemChanges {
 public:
  /// @param recording gets `bin`, `data` and `answers.txt`
  /// @param work an existing folder for files of the recorder
  /// @param limit a tool that runs longer is ended, and recorded as one that fails
  ToolRecorder(const boost::filesystem::path& recording, const boost::filesystem::path& work,
               std::chrono::seconds limit);
  ToolRecorder(const ToolRecorder&) = delete;
  ToolRecorder& operator=(const ToolRecorder&) = delete;
  ~ToolRecorder() override;

  Platform::ChildResult Run(const Platform::ChildCommand& command) override;

  /// Calls that reached the limit.
  std::vector<std::string> UnfinishedCalls() const;
  /// Programs that were called by their path, which nothing can take the place of.
  const std::set<std::string>& UnrecordedPrograms() const { return unrecorded_; }

 private:
  void Prepare(const std::string& program);

  const boost::filesystem::path work_;
  const std::string path_;  ///< PATH before
  std::mutex mutex_;
  std::set<std::string> unrecorded_;
};

}  // namespace Norvik::Host
