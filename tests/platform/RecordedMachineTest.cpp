#include "platform/RecordedMachine.h"

#include <libproc.h>
#include <sys/sysctl.h>

#include "platform/Interfaces.h"
#include "platform/LocalAccounts.h"
#include "platform/LoginRecords.h"
#include "platform/MachinePath.h"
#include "platform/PropertyListFile.h"
#include "platform/Volumes.h"
#include "platform/compat/Recording.h"
#include "support/MacRecording.h"
#include "support/Test.h"

namespace {

using namespace Norvik::Tests;
using namespace Norvik::Platform;
using namespace std::string_literals;

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
  EXPECT_EQ(std::string(::getenv("PATH")).find(recording.Path().string() + "/bin:"), 0u);
  EXPECT_EQ(::system("sw_vers"), 7 << 8);
  EXPECT_EQ(::system("echo a | grep -q a"), 0);
  EXPECT_NE(::system("id >/dev/null 2>&1"), 0) << "answers for the real machine";
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
  EXPECT_THAT(Pids(), Contains(::getpid()));
  EXPECT_THAT(TextOf(::getpid()), MatchesRegex(".*/test_platform [1-9][0-9]*"));
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

TEST(RecordedMachine, ReportsTheSizeOfTheMemory) {
  int name[] = {CTL_HW, HW_MEMSIZE};
  std::uint64_t size = 0;
  std::size_t length = sizeof(size);
  EXPECT_EQ(sysctl(name, 2, &size, &length, nullptr, 0), 0);
  EXPECT_GT(size, 1u << 20);
  length = 4;
  EXPECT_EQ(sysctl(name, 2, &size, &length, nullptr, 0), -1);
}

/// The number of bytes of a value of the kernel; -1 without it.
int LengthOf(const char* name) {
  char bytes[16];
  std::size_t needed = 0, length = sizeof(bytes), small = 1;
  if (sysctlbyname(name, nullptr, &needed, nullptr, 0) != 0) return -1;
  EXPECT_EQ(sysctlbyname(name, bytes, &length, nullptr, 0), 0) << name;
  EXPECT_EQ(length, needed) << name;
  EXPECT_EQ(sysctlbyname(name, bytes, &small, nullptr, 0), -1) << name;
  return static_cast<int>(length);
}

TEST(RecordedMachine, HasValuesInTheFormOfTheKernel) {
  MacRecording recording;
  recording.Add("sysctl.json", R"({"text": "abc", "word": 4294967295, "long": 4294967296,
      "negative": -1, "list": [1], "hw.memsize": 77})");
  recording.PutInForce();
  const std::pair<const char*, int> rows[] = {{"text", 4},      {"word", 4},  {"long", 8},
                                              {"negative", -1}, {"list", -1}, {"absent", -1}};
  for (const auto& [name, length] : rows) EXPECT_EQ(LengthOf(name), length) << name;
  int name[] = {CTL_HW, HW_MEMSIZE};
  std::uint64_t size = 0;
  std::size_t length = sizeof(size);
  EXPECT_EQ(sysctl(name, 2, &size, &length, nullptr, 0), 0);
  EXPECT_EQ(size, 77u);
}

TEST(RecordedMachine, WhatItDoesNotHoldDoesNotExist) {
  for (const char* const content :
       {"", "[{", "5", R"({"users": 4, "mounts": [4], "modified": [4]})",
        R"({"users": "x", "groups": [[]], "logins": {"a": {}}})"}) {
    MacRecording recording;
    for (const char* const file : {"sysctl", "interfaces", "volumes", "accounts", "processes"}) {
      if (*content) recording.Add(file + ".json"s, content);
    }
    recording.PutInForce();
    int name[] = {CTL_HW, HW_MEMSIZE};
    std::size_t length = 0;
    EXPECT_EQ(sysctl(name, 2, nullptr, &length, nullptr, 0), -1) << content;
    EXPECT_EQ(ReadInterfaces(), nullptr) << content;
    EXPECT_EQ(DeviceMountedAt("/"), "") << content;
    EXPECT_FALSE(ModificationTime("/")) << content;
    EXPECT_THAT(LocalUsers(), IsEmpty()) << content;
    EXPECT_THAT(LocalGroups(), IsEmpty()) << content;
    EXPECT_EQ(LoginRecords().Next(), nullptr) << content;
    EXPECT_EQ(HostName(), "localhost") << content;
    EXPECT_THAT(Pids(), IsEmpty()) << content;
  }
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

}  // namespace
