#pragma once

#include <algorithm>
#include <boost/filesystem/operations.hpp>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/RecordedMachine.h"
#include "support/Files.h"
#include "support/PropertyListText.h"
#include "support/TemporaryFolder.h"

namespace Norvik::Tests {

/// A recorded Mac that a test writes itself and puts in force.
class MacRecording {
 public:
  MacRecording& Add(const std::string& name, const std::string& content) {
    boost::filesystem::create_directories((folder_ / name).parent_path());
    WriteFile(folder_ / name, content);
    return *this;
  }
  MacRecording& AddProgram(const std::string& name, const std::string& script) {
    Add("bin/" + name, "#!/bin/sh\n" + script);
    boost::filesystem::permissions(folder_ / "bin" / name, boost::filesystem::owner_all);
    return *this;
  }
  MacRecording& AddRegistry(const std::string& root) {
    return Add("ioregistry.plist", PropertyList(root));
  }

  void PutInForce() { machine_.emplace(folder_.Path().string()); }
  void End() { machine_.reset(); }
  const boost::filesystem::path& Path() const { return folder_.Path(); }

 private:
  TemporaryFolder folder_;
  std::optional<Platform::RecordedMachine> machine_;
};

using Keys = std::vector<std::pair<std::string, std::string>>;

/// An entry of a recorded I/O registry: properties and children as property-list text. The class is
/// the name as well, if none is given.
inline std::string Entry(const std::string& className, Keys properties,
                         const std::vector<std::string>& children = {}) {
  const auto isName = [](const auto& item) { return item.first == "IORegistryEntryName"; };
  const bool named = std::any_of(properties.begin(), properties.end(), isName);
  properties.insert(properties.begin(), {"IOObjectClass", Text(className)});
  if (!named) properties.insert(properties.begin(), {"IORegistryEntryName", Text(className)});
  if (!children.empty()) properties.push_back({"IORegistryEntryChildren", Array(children)});
  return Dictionary(properties);
}

}  // namespace Norvik::Tests
