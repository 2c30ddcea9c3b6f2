#include "platform/DirectoryReader.h"

#include "support/Test.h"

namespace {

using namespace Norvik;
using namespace Norvik::Tests;

TEST(DirectoryReader, AFolderThatIsRemovedMeanwhileHasEnded) {
  const TemporaryFolder folder;
  fs::create_directory(folder / "gone");
  Platform::DirectoryReader reader;
  reader.Open((folder / "gone").string());
  fs::remove(folder / "gone");
  Platform::DirectoryEntry entry;
  std::error_code error;
  EXPECT_FALSE(reader.Next(entry, error));
  EXPECT_FALSE(error) << error.message();
}

}  // namespace
