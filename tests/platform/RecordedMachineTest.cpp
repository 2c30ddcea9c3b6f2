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
#include "platform/compat/Recording.h"
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

/// Name, path and footprint of a process, "?" for what cannot be read.
std::string TextOf(int pid) {
  char name[64] = "?", path[PROC_PIDPATHINFO_MAXSIZE] = "?";
  rusage_info_v2 usage;
  proc_name(pid, name, sizeof(name));
  proc_pidpath(pid, path, sizeof(path));
  const int failure =
      proc_pid_rusage(pid, RUSAGE_INFO_V2, reinterpret_cast<rusage_info_t*>(&usage));
  return std::string(name) + " " + path + " " +
         (failure == 0 ? std::to_string(usage.ri_phys_footprint) : "?");
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
  EXPECT_THAT(TextOf(::getpid()), testing::MatchesRegex(".*/test_platform [1-9][0-9]*"));
  MacRecording recording;
  recording.Add("processes.json", R"([
      {"pid": 1, "name": "launchd", "path": "/sbin/launchd", "footprint": 1048576},
      {"pid": 77, "name": "kernel helper"}, 5, {"pid": "x", "path": 3}])");
  recording.PutInForce();
  EXPECT_THAT(Pids(), ElementsAre(1, 77, 0));
  EXPECT_EQ(TextOf(1), "launchd /sbin/launchd 1048576");
  EXPECT_EQ(TextOf(77), "kernel helper ? ?");
  EXPECT_EQ(TextOf(::getpid()), "? ? ?");
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
  for (const Json& row : DataOf("platform/smbios-files.json")) {
    const std::string entryPoint = row["entryPoint"].get<Bytes>();
    MacRecording recording;
    recording.Add("smbios.bin", entryPoint + row["rest"].get<Bytes>());
    EXPECT_EQ(RecordedSmBios().table, "");
    recording.PutInForce();
    EXPECT_EQ(RecordedSmBios().entryPoint, entryPoint) << row["name"];
    EXPECT_EQ(RecordedSmBios().table, row["table"]) << row["name"];
  }
}

TEST(PropertyListFile, AWrongTypeAndAMissingKeyAreEmpty) {
  MacRecording files;
  files.Add("daemon.plist", PropertyListOf(R"({"Label": "com.example.a", "None": [],
      "Words": ["/bin/a", "-x"], "Numbers": [4], "Off": false})"));
  files.Add("array.plist", PropertyListOf(R"(["Label"])"));
  const std::tuple<const char*, const char*, const char*, const char*> cases[] = {
      {"daemon.plist", "Label", "com.example.a", ""},
      {"daemon.plist", "Words", "", "/bin/a"},
      {"daemon.plist", "Numbers", "", ""},
      {"daemon.plist", "None", "", ""},
      {"daemon.plist", "Off", "", ""},
      {"daemon.plist", "On", "", ""},
      {"array.plist", "Label", "", ""},
      {"absent.plist", "Label", "", ""},
      {".", "Label", "", ""}};
  for (const auto& [name, key, text, firstText] : cases) {
    const PropertyListFile file((files.Path() / name).string());
    EXPECT_EQ(file.Text(key), text) << name << key;
    EXPECT_EQ(file.FirstText(key), firstText) << name << key;
    EXPECT_EQ(file.Has(key), name == std::string("daemon.plist") && key != std::string("On"))
        << key;
  }
}

}  // namespace
