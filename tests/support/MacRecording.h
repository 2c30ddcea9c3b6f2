#pragma once

#include <optional>

#include "platform/RecordedMachine.h"
#include "support/Cases.h"
#include "support/PropertyListText.h"
#include "support/TemporaryFolder.h"

namespace Norvik::Tests {

/// An entry of a recorded I/O registry with its children, converted to the form of the recording
/// from `["Class", {"property": ...}, child, ...]`. The name defaults to the class.
inline Json RegistryEntry(const Json& entry) {
  Json list = {{"IORegistryEntryName", entry[0]}, {"IOObjectClass", entry[0]}};
  if (entry.size() > 1) list.update(entry[1]);
  for (std::size_t child = 2; child < entry.size(); ++child) {
    list["IORegistryEntryChildren"].push_back(RegistryEntry(entry[child]));
  }
  return list;
}

/// A recorded Mac that a test creates and activates.
class MacRecording {
 public:
  MacRecording& Add(const std::string& name, const std::string& content) {
    boost::filesystem::create_directories((folder_ / name).parent_path());
    WriteFile(folder_ / name, content);
    return *this;
  }
  MacRecording& AddProgram(const std::string& name, const std::string& script) {
    Add("bin/" + name, script);
    boost::filesystem::permissions(folder_ / "bin" / name, boost::filesystem::owner_all);
    return *this;
  }
  /// Sets what the program of a call prints: a text, or a property list from any other value.
  MacRecording& AddAnswer(const std::string& call, const Json& answer) {
    const std::string file = std::to_string(++answers_);
    Add("data/" + file, answer.is_string() ? answer.get<std::string>() : PropertyListOf(answer));
    Add("answers.txt", ContentOf(folder_ / "answers.txt") + call + "|" + file + "\n");
    return AddProgram(call.substr(0, call.find(' ')),
                      ContentOf(NORVIK_SOURCE_DIR "/tests/machines/answer"));
  }
  MacRecording& AddRegistry(const Json& root) {
    return Add("ioregistry.plist", PropertyListOf(RegistryEntry(root)));
  }

  void PutInForce() { machine_.emplace(folder_.Path().string()); }
  void End() { machine_.reset(); }
  const boost::filesystem::path& Path() const { return folder_.Path(); }

 private:
  TemporaryFolder folder_;
  int answers_ = 0;
  std::optional<Platform::RecordedMachine> machine_;
};

}  // namespace Norvik::Tests
