#include "platform/RecordedMachine.h"

#include <gmock/gmock.h>
#include <libproc.h>
#include <sys/sysctl.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "platform/MachinePath.h"
#include "platform/PropertyListFile.h"
#include "support/MacRecording.h"

namespace {

using namespace Norvik::Tests;
using namespace Norvik::Platform;
using namespace std::string_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::vector<int> Pids() {
  std::vector<int> pids(static_cast<std::size_t>(proc_listpids(PROC_ALL_PIDS, 0, nullptr, 0)) / 4);
  proc_listpids(PROC_ALL_PIDS, 0, pids.data(), static_cast<int>(pids.size() * sizeof(int)));
  return pids;
}

std::string NameOf(int pid) {
  char name[64] = "";
  return proc_name(pid, name, sizeof(name)) > 0 ? name : "unknown";
}

std::string PathOf(int pid) {
  char path[PROC_PIDPATHINFO_MAXSIZE] = "";
  return proc_pidpath(pid, path, sizeof(path)) > 0 ? path : "unknown";
}

/// -1 if it cannot be read.
long long FootprintOf(int pid) {
  rusage_info_v2 usage;
  if (proc_pid_rusage(pid, RUSAGE_INFO_V2, reinterpret_cast<rusage_info_t*>(&usage)) != 0)
    return -1;
  return static_cast<long long>(usage.ri_phys_footprint);
}

TEST(RecordedMachine, ProgramsAndFilesAreItsOwnAsLongAsItLives) {
  const std::string before = ::getenv("PATH");
  MacRecording recording;
  recording.AddProgram("sw_vers", "#!/bin/sh\nexit 7\n");
  recording.PutInForce();
  EXPECT_TRUE(IsMachineRecorded());
  EXPECT_EQ(::getenv("PATH"), recording.Path().string() + "/bin:/usr/bin:/bin");
  EXPECT_EQ(::system("sw_vers"), 7 << 8);
  for (const char* const path : {"/etc/hosts", "/../../etc/hosts"}) {
    EXPECT_EQ(MachinePath(path), recording.Path().string() + "/root/etc/hosts") << path;
  }
  EXPECT_EQ(MachinePath("work/file"), "work/file");
  EXPECT_THROW(RecordedMachine(recording.Path().string()), std::runtime_error);
  recording.End();
  EXPECT_FALSE(IsMachineRecorded());
  EXPECT_EQ(::getenv("PATH"), before);
  EXPECT_EQ(MachinePath("/etc/../etc/hosts"), "/etc/../etc/hosts");
  EXPECT_THROW(RecordedMachine("/no/such/folder"), std::runtime_error);
}

TEST(RecordedMachine, ItsProcessesStandForTheRealOnes) {
  EXPECT_THAT(Pids(), testing::Contains(::getpid()));
  EXPECT_THAT(PathOf(::getpid()), HasSubstr("test_platform"));
  EXPECT_GT(FootprintOf(::getpid()), 0);

  MacRecording recording;
  recording.Add("processes.json", R"([
      {"pid": 1, "name": "launchd", "path": "/sbin/launchd", "footprint": 1048576},
      {"pid": 77, "name": "kernel helper"}, 5, {"pid": "x", "path": 3}])");
  recording.PutInForce();
  EXPECT_THAT(Pids(), ElementsAre(1, 77, 0));
  EXPECT_EQ(NameOf(1), "launchd");
  EXPECT_EQ(PathOf(1), "/sbin/launchd");
  EXPECT_EQ(FootprintOf(1), 1048576);
  EXPECT_EQ(NameOf(77), "kernel helper");
  EXPECT_EQ(PathOf(77), "unknown");
  EXPECT_EQ(FootprintOf(77), -1);
  EXPECT_EQ(NameOf(::getpid()), "unknown");
  for (const char* const damaged : {"", "[{", "5", "{\"pid\": 4}", "[[4]]"}) {
    recording.Add("processes.json", damaged);
    EXPECT_THAT(Pids(), IsEmpty()) << damaged;
  }
  recording.Add("processes.json", R"([{"pid": 1, "path": "/sbin/launchd"}])");
  char small[4];
  EXPECT_EQ(proc_pidpath(1, small, sizeof(small)), 3);
  EXPECT_STREQ(small, "/sb");
}

TEST(RecordedMachine, TellsTheSizeOfTheMemory) {
  int name[] = {CTL_HW, HW_MEMSIZE};
  std::uint64_t size = 0;
  std::size_t length = sizeof(size);
  EXPECT_EQ(sysctl(name, 2, &size, &length, nullptr, 0), 0);
  EXPECT_GT(size, 1u << 20);
  length = 4;
  EXPECT_EQ(sysctl(name, 2, &size, &length, nullptr, 0), -1);
}

TEST(RecordedMachine, SplitsTheSmBiosFileAtTheEndOfItsEntryPoint) {
  const auto old = [](char address) {
    return "_SM_\0\x1f"s + std::string(18, '.') + std::string{address, 0, 0, 0} + "end";
  };
  const auto recent = [](char address) {
    return "_SM3_\0\x18"s + std::string(9, '.') + std::string{address, 0, 0, 0, 0, 0, 0, 0};
  };
  const struct {
    const char* name;
    std::string file;
    std::size_t entryPoint;
    const char* table;
  } cases[] = {
      {"table behind it", old(0) + "TABLE", 31, "TABLE"},
      {"table where a dump puts it", old(32) + "?TABLE", 31, "TABLE"},
      {"table at an address of the machine", old(127) + "TABLE", 31, "TABLE"},
      {"the longer form", recent(0) + "TABLE", 24, "TABLE"},
      {"the longer form in a dump", recent(32) + std::string(8, '?') + "TABLE", 24, "TABLE"},
      {"no table", old(0), 31, ""},
      {"cut", old(0).substr(0, 30), 0, ""},
      {"empty", "", 0, ""},
  };
  for (const auto& row : cases) {
    MacRecording recording;
    recording.Add("smbios.bin", row.file);
    EXPECT_EQ(RecordedSmBios().table, "");
    recording.PutInForce();
    EXPECT_EQ(RecordedSmBios().entryPoint, row.file.substr(0, row.entryPoint)) << row.name;
    EXPECT_EQ(RecordedSmBios().table, row.table) << row.name;
  }
}

TEST(PropertyListFile, AWrongTypeAndAMissingKeyAreEmpty) {
  MacRecording files;
  files.Add("daemon.plist", PropertyListOf(R"({"Label": "com.example.a", "None": [],
      "Words": ["/bin/a", "-x"], "Numbers": [4], "Off": false})"));
  files.Add("array.plist", PropertyListOf(R"(["Label"])"));
  const PropertyListFile file((files.Path() / "daemon.plist").string());
  EXPECT_EQ(file.Text("Label"), "com.example.a");
  EXPECT_EQ(file.FirstText("Words"), "/bin/a");
  EXPECT_TRUE(file.Has("Off"));
  EXPECT_FALSE(file.Has("On"));
  for (const char* const key : {"Words", "Off", "On"}) EXPECT_EQ(file.Text(key), "") << key;
  for (const char* const key : {"Numbers", "None", "Label", "On"}) {
    EXPECT_EQ(file.FirstText(key), "") << key;
  }
  for (const char* const name : {"array.plist", "absent.plist", "."}) {
    EXPECT_FALSE(PropertyListFile((files.Path() / name).string()).Has("Label")) << name;
  }
}

}  // namespace
