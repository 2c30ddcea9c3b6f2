#include <gmock/gmock.h>

#include "module/Inventory/CSharedResourcesSection.h"
#include "support/Collected.h"
#include "support/LogCapture.h"
#include "support/Programs.h"

namespace Norvik::KOB {
namespace {

using testing::ElementsAre;
using namespace Tests;

auto SharesOf(const std::list<SharedResourceInfo>& shares) {
  using Info = SharedResourceInfo;
  return TextsOf(shares, &Info::name, &Info::type, &Info::description, &Info::path);
}

TEST(Shares, AreReadFromTheirProperties) {
  const std::pair<const char*, const char*> rows[] = {
      {"dsAttrTypeNative:directory_path: /Users/anna/Public\nRecordName: Anna\n",
       " Anna| /Users/anna/Public"},
      {"dsAttrTypeNative:directory_path:\n /Volumes/Two Words\nRecordName:\n Anna's Folder\n",
       " Anna's Folder| /Volumes/Two Words"},
      {"RecordName: first\nRecordName: second", " second|$HOME"},
      {"dsAttrTypeNative:directory_path: RecordName: x\n", "| RecordName: x"},
      {"dsAttrTypeNative:smb_name: x\nRecordType: y\n", "|$HOME"},
      {"", "|$HOME"},
      {"\xFF\nRecordName: \xFF\n:\n:\n", "|$HOME"},
  };
  for (const auto& [properties, share] : rows) {
    const std::string text = properties;
    const auto shares = ReadShares("s\n\n", [&](const std::string&) { return text; });
    EXPECT_THAT(SharesOf(shares), ElementsAre(std::string("s|Shared Folder|") + share));
  }
}

TEST(Shares, AreAskedOfTheDirectoryService) {
  const LogCapture log;
  Programs programs;
  programs.Add("dscl",
               "case \"$*\" in\n"
               "'. -list /SharePoints') echo 'Anna 100%'; echo Ben ;;\n"
               "'. -read /SharePoints/Anna 100%') echo RecordName: A ;;\n"
               "esac");
  EXPECT_THAT(SharesOf(Collected<SharedResourceInfo>(CSharedResourcesSection())),
              ElementsAre("Anna 100%|Shared Folder| A|$HOME", "Ben|Shared Folder||$HOME"));
  EXPECT_EQ(ContentOf("/tmp/shareList"), "Anna 100%\nBen\n");
  programs.Add("dscl", "exit 1");
  EXPECT_TRUE(Collected<SharedResourceInfo>(CSharedResourcesSection()).empty());
}

}  // namespace
}  // namespace Norvik::KOB
