#include <grp.h>
#include <pwd.h>
#include <time.h>

#include <boost/core/demangle.hpp>

#include "common/identification/HostInfoProvider.h"
#include "common/text/Text.h"
#include "module/CaseFolder.h"
#include "module/CommonInventorySections/AlternativeBiosSection.h"
#include "module/CommonInventorySections/BiosSection.h"
#include "module/CommonInventorySections/BoardSlotsSection.h"
#include "module/Inventory/CSharedResourcesSection.h"
#include "module/Inventory/CdromSection.h"
#include "module/Inventory/HardwareSection.h"
#include "module/Inventory/KeyboardSection.h"
#include "module/Inventory/LocalUsersSection.h"
#include "module/Inventory/MonitorsSection.h"
#include "module/Inventory/NetworkDrivesSection.h"
#include "module/Inventory/PrintersSection.h"
#include "module/Inventory/ServicesSection.h"
#include "module/Inventory/SystemSection.h"
#include "module/Inventory/VideoSection.h"
#include "platform/ScopedHandle.h"
#include "platform/compat/LiveObjects.h"
#include "support/MacRecording.h"
#include "support/RecordJson.h"
#include "support/SmbiosTable.h"

namespace Norvik::KOB {
namespace {

using namespace Tests;
using SharedSmBios = std::shared_ptr<Common::SmBios>;

struct Collected {
  Json records;
  std::string exception;  ///< type of the exception
};

template <class Value>
Json RecordsOf(const Value& value) {
  return JsonOf(value);
}

/// `SystemInfo` has no JSON form of its own.
Json RecordsOf(const SystemInfo& info) {
  const auto text = [](const wxString& it) { return Json(Common::ToUtf8(it)); };
  return {{"domain", text(info.domain)},
          {"workGroup", text(info.workGroup)},
          {"description", text(info.description)},
          {"server", text(info.server)},
          {"userName", text(info.userName)},
          {"virtualizationAvailable", info.virtualizationAvailable},
          {"virtualizationLabel", text(info.virtualizationLabel)},
          {"virtualizationKeyword", text(info.virtualizationKeyword)}};
}

template <class Section, class Value>
Collected Collect(Section section, void (Section::*getInfo)(Value&)) {
  Collected collected;
  Value value;
  try {
    (section.*getInfo)(value);
  } catch (const std::exception& error) {
    collected.exception = boost::core::demangle(typeid(error).name());
  }
  collected.records = RecordsOf(value);
  if (!collected.records.is_array()) collected.records = Json::array({collected.records});
  return collected;
}

template <class Section>
Collected CollectFrom(const SharedSmBios& smBios) {
  if constexpr (std::is_default_constructible_v<Section>) {
    return Collect(Section(), &Section::GetInfo);
  } else if constexpr (std::is_constructible_v<Section, SharedSmBios>) {
    return Collect(Section(smBios), &Section::GetInfo);
  } else {
    return Collect(Section({}), &Section::GetInfo);
  }
}

const std::map<std::string, Collected (*)(const SharedSmBios&)> SECTIONS = {
    {"bios", CollectFrom<BiosSection>},
    {"bios-without-smbios", CollectFrom<AlternativeBiosSection>},
    {"board-slots", CollectFrom<BoardSlotsSection>},
    {"cdrom", CollectFrom<CdromSection>},
    {"hardware", CollectFrom<HardwareSection>},
    {"keyboard", CollectFrom<KeyboardSection>},
    {"monitors", CollectFrom<MonitorsSection>},
    {"network-drives", CollectFrom<NetworkDrivesSection>},
    {"printers", CollectFrom<PrintersSection>},
    {"services", CollectFrom<ServicesSection>},
    {"shares", CollectFrom<CSharedResourcesSection>},
    {"system", CollectFrom<SystemSection>},
    {"video", CollectFrom<VideoSection>},
};

/// The accounts of a machine with these login records, from type, time and user.
std::string AccountsOf(const Json& logins) {
  Json records = Json::array();
  for (const Json& login : logins) {
    records.push_back({{"type", login[0]}, {"time", login[1]}, {"user", login[2]}});
  }
  return Json{{"logins", records}}.dump();
}

std::vector<Case> AllCases() {
  auto cases = CasesIn("module/Inventory/sections");
  for (Case& it : cases) {
    for (const char* part : {"answers", "files", "registry", "smBios", "records"}) {
      if (it.entry.contains(part)) it.entry[part] = Resolved(it.entry[part], it.entry);
    }
  }
  return cases;
}

/// Runs in a temporary working directory, because a collector leaves a file there.
class Sections : public testing::TestWithParam<Case> {
 protected:
  Sections() {
    fs::current_path(folder_.Path());
    const Json& entry = GetParam().entry;
    for (const auto& [call, answer] : PartOf(entry, "answers").items()) {
      const bool isBytes = answer.is_object() && answer.contains("bytes");
      recording_.AddAnswer(call, isBytes ? Json(answer["bytes"].get<Bytes>()) : answer);
    }
    for (const auto& [name, content] : PartOf(entry, "files").items()) {
      const std::string text =
          content.is_string() ? content.get<std::string>() : PropertyListOf(content);
      name[0] == '/' ? WriteFile(name, text) : void(recording_.Add(name, text));
    }
    for (const auto& [name, target] : PartOf(entry, "links").items()) {
      fs::create_symlink(target.get<std::string>(), recording_.Path() / name);
    }
    if (entry.contains("registry")) recording_.AddRegistry(entry["registry"]);
    recording_.Add("accounts.json", AccountsOf(entry.value("logins", Json::array()))).PutInForce();
  }
  ~Sections() override { fs::current_path(previous_); }

 private:
  const fs::path previous_ = fs::current_path();
  const FixedFilesLock lock_;
  const TimeZone utc_{"UTC0"};
  TemporaryFolder folder_;
  MacRecording recording_;
};

TEST_P(Sections, ReportWhatTheMachineHas) {
  const Json& entry = GetParam().entry;
  const LogCapture log;
  const auto smBios = std::make_shared<Common::SmBios>(entry.value("smBiosVersion", 0x301u),
                                                       SmbiosTableOf(PartOf(entry, "smBios")));
  const Collected collected = SECTIONS.at(GetParam().file)(smBios);
  const Json wanted = entry.value("records", Json::array());
  EXPECT_EQ(Shown(Chosen(collected.records, wanted)), Shown(wanted));
  EXPECT_THAT(collected.exception, EndsWith(entry.value("throws", "")));
  EXPECT_EQ(collected.exception.empty(), !entry.contains("throws")) << collected.exception;
  for (const auto& [level, texts] : PartOf(entry, "log").items()) {
    std::vector<Matcher<std::string>> beginnings;
    for (const std::string text : texts) beginnings.push_back(StartsWith(text));
    EXPECT_THAT(log.Texts(std::stoi(level)), ElementsAreArray(beginnings)) << level;
  }
  for (const auto& [name, content] : PartOf(entry, "leaves").items()) {
    EXPECT_EQ(ContentOf(name), content) << name;
  }
  EXPECT_EQ(Platform::CountLiveObjects(), Platform::LiveObjects());
}

INSTANTIATE_TEST_SUITE_P(Cases, Sections, ValuesIn(AllCases()), CaseName());

TEST(ServicesSection, AProgramThatWasSeenOnceCountsAsRunning) {
  MacRecording recording;
  const Json service = {{"Label", "a"}, {"Program", "/sbin/run"}};
  recording.Add("root/Library/LaunchDaemons/a.plist", PropertyListOf(service)).PutInForce();
  ServicesSection section;
  const std::pair<const char*, const char*> rows[] = {
      {"[]", "Stopped"}, {R"([{"pid": 4, "path": "/sbin/run"}])", "Running"}, {"[]", "Running"}};
  for (const auto& [processes, state] : rows) {
    recording.Add("processes.json", processes);
    std::list<ServiceInfo> services;
    section.GetInfo(services);
    EXPECT_EQ(JsonOf(services).at(0).at("state"), state) << processes;
  }
}

TEST(SystemSection, NamesThisHostAndTheTime) {
  const auto before = std::time(nullptr);
  SystemInfo info;
  SystemSection().GetInfo(info);
  EXPECT_EQ(info.hostName, Common::WxStringFromStdString(Common::HostInfoProvider::GetHostName()));
  EXPECT_GE(info.collectionTime, before);
  EXPECT_LE(info.collectionTime, std::time(nullptr));
}

TEST(LocalUsersSection, AddsOneRecordWithAllAccounts) {
  std::map<std::string, TextList> members;
  while (const group* const entry = ::getgrent()) {
    TextList& names = members[entry->gr_name];
    for (const char* const* member = entry->gr_mem; *member; ++member) names.push_back(*member);
  }
  ::endgrent();
  const passwd* const own = ::getpwuid(::geteuid());
  ASSERT_TRUE(own);
  for (const char* time : {"first", "second"}) {
    std::list<LocalUserInfo> result;
    LocalUsersSection().GetInfo(result);
    ASSERT_EQ(result.size(), 1U) << time;
    std::map<std::string, TextList> found;
    for (const auto& group : result.front().groups) {
      TextList& names = found[Common::ToUtf8(group.name)];
      for (const auto& user : group.users) names.push_back(Common::ToUtf8(user));
    }
    EXPECT_EQ(found, members) << time;
    const Json wanted = {
        {"userName", own->pw_name}, {"description", own->pw_gecos}, {"enabled", true}};
    const Json users = JsonOf(result.front().users);
    EXPECT_TRUE(std::any_of(users.begin(), users.end(), [&](const Json& user) {
      return Chosen(user, wanted) == wanted;
    })) << users;
  }
}

TEST(VideoSection, TheDiagnosticFunctionsReportEveryAccelerator) {
  MacRecording recording;
  recording.AddRegistry(Json::parse(R"(["Root", {},
      ["A", {"IOObjectInherits": ["IOAccelerator"], "PerformanceStatistics": {
          "GPU Core Utilization": 125000000, "vramFreeBytes": 3000, "vramUsedBytes": 1000}}],
      ["A", {"IOObjectInherits": ["IOAccelerator"], "PerformanceStatistics": {
          "GPU Core Utilization": 5, "vramFreeBytes": "none"}}],
      ["A", {"IOObjectInherits": ["IOAccelerator"]}], ["P"]])"));
  recording.PutInForce();
  LogCapture log;
  testing::internal::CaptureStderr();
  unsigned int parent = IO_OBJECT_NULL;
  std::list<unsigned int> handles;
  GetGPUList(parent, handles);
  EXPECT_EQ(handles.size(), 3u);
  for (const unsigned int handle : handles) IOObjectRelease(handle);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "GPU: 12.500% VRAM: 25.000%\n");
  EXPECT_TRUE(log.Holds(7, ">>"));
  EXPECT_EQ(Platform::CountLiveObjects(), Platform::LiveObjects());
}

/// The date of firmware with this text as local time in the zone of this process, which the library
/// reads only once; or the number that stands for no date.
std::string DateIn(const std::string& text) {
  const Json firmware = {0, 0, {1, 0, 0, 0, 2}, "Fjord Inc.", text};
  const auto smBios =
      std::make_shared<Common::SmBios>(0x204, SmbiosTableOf(Json::array({firmware})));
  SmBiosInfo info;
  BiosSection(smBios).GetInfo(info);
  if (info.date <= 0) return std::to_string(info.date);
  const std::time_t date = info.date;
  char local[32];
  ::strftime(local, sizeof(local), "%Y-%m-%d %H:%M:%S", ::localtime(&date));
  return local;
}

TEST(BiosSection, TheDateIsALocalMidnight) {
  const LogCapture log;
  ExpectRows(Json::parse(R"([["04/27/2021", "2021-04-27 00:00:00"],
                             ["12/02/2009", "2009-12-02 00:00:00"],
                             ["04/27/21", "-1"],
                             ["13/45/2021", "0"],
                             ["no date", "0"],
                             ["", "0"]])"),
             DateIn);
  SmBiosInfo info;
  EXPECT_THROW(BiosSection({}).GetInfo(info), std::bad_weak_ptr);
}

}  // namespace
}  // namespace Norvik::KOB
