#include <gtest/gtest.h>

#include <algorithm>
#include <boost/filesystem/operations.hpp>
#include <string>

#include "support/Files.h"

namespace {

namespace fs = boost::filesystem;

TEST(MacSources, TheDocumentationListsEachWithItsLines) {
  const fs::path root = NORVIK_SOURCE_DIR;
  const std::string page = Norvik::Tests::ContentOf(root / "docs/collectors.md");
  for (const fs::directory_entry& box : fs::directory_iterator(root)) {
    if (!fs::is_directory(box.path() / "mac")) continue;
    for (const fs::directory_entry& source : fs::directory_iterator(box.path() / "mac")) {
      const std::string text = Norvik::Tests::ContentOf(source.path());
      const std::string row = "| `" + fs::relative(source.path(), root).generic_string() + "` | " +
                              std::to_string(std::count(text.begin(), text.end(), '\n')) + " | ";
      EXPECT_NE(page.find(row), std::string::npos) << row;
    }
  }
}

}  // namespace
