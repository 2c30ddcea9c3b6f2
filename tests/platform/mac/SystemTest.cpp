// The calls of the system that the recorded machines stand for in all other tests.

#include <IOKit/IOKitLib.h>
#include <libproc.h>
#include <sys/sysctl.h>

#include "platform/CfText.h"
#include "platform/RecordedMachine.h"
#include "platform/SystemChanges.h"
#include "support/FolderRows.h"
#include "support/Test.h"

namespace {

using namespace Norvik::Platform;
using namespace Norvik::Tests;

TEST(RealMac, HasAPlatformWithAName) {
  const IoObject platform(
      IOServiceGetMatchingService(MACH_PORT_NULL, IOServiceMatching("IOPlatformExpertDevice")));
  ASSERT_TRUE(platform);
  const CfRef<CFTypeRef> identifier(IORegistryEntryCreateCFProperty(
      platform.Get(), CfTextOf("IOPlatformUUID").Get(), kCFAllocatorDefault, 0));
  ASSERT_TRUE(identifier);
  ASSERT_EQ(CFGetTypeID(identifier.Get()), CFStringGetTypeID());
  EXPECT_EQ(CFStringGetLength(static_cast<CFStringRef>(identifier.Get())), 36);
}

TEST(RealMac, ListsThisProcessWithItsPath) {
  std::vector<int> pids(static_cast<std::size_t>(proc_listpids(PROC_ALL_PIDS, 0, nullptr, 0)));
  proc_listpids(PROC_ALL_PIDS, 0, pids.data(), static_cast<int>(pids.size() * sizeof(int)));
  EXPECT_THAT(pids, Contains(::getpid()));
  char path[PROC_PIDPATHINFO_MAXSIZE] = "";
  EXPECT_GT(proc_pidpath(::getpid(), path, sizeof(path)), 0);
  EXPECT_THAT(path, EndsWith("/test_mac"));
}

TEST(RealMac, HasAMemory) {
  int name[] = {CTL_HW, HW_MEMSIZE};
  std::uint64_t size = 0;
  std::size_t length = sizeof(size);
  EXPECT_EQ(sysctl(name, 2, &size, &length, nullptr, 0), 0);
  EXPECT_GT(size, 1u << 30);
}

TEST(RealMac, ListsFoldersInBulkWithTheSameRowsInTheSameOrder) {
  for (const char* const folder : {"/usr/bin", "/usr/lib", "/System/Library", "/Applications"}) {
    DirectoryReader bulk(BulkWay());
    EXPECT_EQ(RowsOf(bulk, folder), RowsOf(ReadingWay(), folder)) << folder;
    EXPECT_EQ(bulk.Calls().metadata, 0U) << folder;
  }
}

TEST(RealMac, TakesNoRecording) {
  EXPECT_FALSE(RecordedMachine::IsAvailable());
  EXPECT_THROW(RecordedMachine("/"), std::runtime_error);
  EXPECT_EQ(GetSystemChanges()->AppleEventError(), 0);
}

}  // namespace
