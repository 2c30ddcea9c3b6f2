#pragma once

#include <stdlib.h>

#include <string>

#include "support/Files.h"
#include "support/TemporaryFolder.h"

namespace Norvik::Tests {

/// A folder of programs that comes first in PATH, for as long as it lives.
class Programs {
 public:
  Programs() : path_(::getenv("PATH")) {
    ::setenv("PATH", (folder_.Path().string() + ":" + path_).c_str(), 1);
  }
  ~Programs() { ::setenv("PATH", path_.c_str(), 1); }
  Programs(const Programs&) = delete;
  Programs& operator=(const Programs&) = delete;

  void Add(const std::string& name, const std::string& script) {
    WriteFile(folder_ / name, "#!/bin/sh\n" + script);
    boost::filesystem::permissions(folder_ / name, boost::filesystem::owner_all);
  }
  /// A program that prints a text for just these arguments and fails for others.
  void AddOutput(const std::string& name, const std::string& arguments, const std::string& output) {
    const auto file = folder_ / (name + ".output");
    WriteFile(file, output);
    Add(name, "[ \"$*\" = '" + arguments + "' ] && cat " + file.string());
  }

 private:
  TemporaryFolder folder_;
  std::string path_;
};

}  // namespace Norvik::Tests
