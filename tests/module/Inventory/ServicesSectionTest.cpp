#include "module/Inventory/ServicesSection.h"

#include <gmock/gmock.h>

#include <string>

#include "common/text/Text.h"
#include "platform/compat/LiveObjects.h"
#include "support/MacRecording.h"

namespace {

using namespace Norvik::Tests;
using namespace Norvik::KOB;
using namespace std::string_literals;
using Norvik::Common::ToUtf8;
using testing::ElementsAre;
using testing::UnorderedElementsAre;

constexpr char SYSTEM[] = "root/System/Library/LaunchDaemons/";
constexpr char LOCAL[] = "root/Library/LaunchDaemons/";

std::string Daemon(const Keys& keys) { return PropertyList(Dictionary(keys)); }

std::string Labelled(const std::string& label) { return Daemon({{"Label", Text(label)}}); }

TEST(ServicesSection, ReadsADaemonAsItsListTellsIt) {
  const auto words = [](const std::string& first) { return Array({Text(first), Text("-d")}); };
  const struct {
    const char* name;
    Keys keys;
    std::string record;
  } cases[] = {
      {"program that runs",
       {{"Label", Text("a")}, {"Program", Text("/sbin/run")}},
       "a|a|/sbin/run|Enabled|Running|"},
      {"first word that runs",
       {{"Label", Text("a")}, {"ProgramArguments", words("/sbin/run")}},
       "a|a|/sbin/run|Enabled|Running|"},
      {"the program comes before the words",
       {{"Label", Text("a")}, {"Program", Text("/sbin/x")}, {"ProgramArguments", words("/y")}},
       "a|a|/sbin/x|Enabled|Stopped|"},
      {"an empty program does not",
       {{"Label", Text("a")}, {"Program", Text("")}, {"ProgramArguments", words("/y")}},
       "a|a|/y|Enabled|Stopped|"},
      {"a program that only begins alike",
       {{"Label", Text("a")}, {"Program", Text("/sbin/run2")}},
       "a|a|/sbin/run2|Enabled|Stopped|"},
      {"no command", {{"Label", Text("ü")}}, "ü|ü||Enabled|Stopped|"},
      {"no words",
       {{"Label", Text("a")}, {"ProgramArguments", Array({})}},
       "a|a||Enabled|Stopped|"},
      // Deliberately disabled by the key alone.
      {"disabled by a key of false",
       {{"Label", Text("a")}, {"Disabled", "<false/>"}},
       "a|a||Disabled|Stopped|"},
      {"label of another type", {{"Label", "<integer>4</integer>"}}, ""},
      {"no label", {{"Program", Text("/sbin/run")}}, ""},
  };
  for (const auto& row : cases) {
    MacRecording recording;
    recording.Add("processes.json", R"([{"pid": 4, "path": "/sbin/run"}, {"pid": 0, "path": ""}])");
    recording.Add(LOCAL + "a.plist"s, Daemon(row.keys));
    recording.PutInForce();
    std::list<ServiceInfo> services;
    ServicesSection().GetInfo(services);
    std::string record;
    for (const ServiceInfo& service : services) {
      for (const wxString& field : {service.name, service.displayName, service.command,
                                    service.startupMode, service.state}) {
        record += ToUtf8(field) + "|";
      }
      record += ToUtf8(service.description);
    }
    EXPECT_EQ(record, row.record) << row.name;
  }
}

TEST(ServicesSection, ListsBothFoldersAndNoOther) {
  MacRecording recording;
  recording.Add("processes.json", "[]");
  recording.Add(SYSTEM + "same.plist"s, Labelled("same"));
  recording.Add(LOCAL + "same.plist"s, Labelled("same"));
  recording.Add(LOCAL + "old.plist.bak"s, Labelled("set aside"));
  recording.Add(LOCAL + "notes.txt"s, Labelled("no list"));
  recording.Add(LOCAL + "damaged.plist"s, "<plist><dict>");
  recording.Add(LOCAL + "folder.plist/a.plist"s, Labelled("below"));
  recording.Add("root/Library/LaunchAgents/a.plist", Labelled("agent"));
  recording.Add("linked", Labelled("linked"));
  for (const char* const target : {"linked", "root"}) {
    boost::filesystem::create_symlink(recording.Path() / target,
                                      recording.Path() / LOCAL / (target + ".plist"s));
  }
  recording.PutInForce();
  std::list<ServiceInfo> services;
  ServicesSection().GetInfo(services);
  std::vector<std::string> names;
  for (const ServiceInfo& service : services) names.push_back(ToUtf8(service.name));
  EXPECT_EQ(names.front(), "same");
  // A link counts as a file, whatever it leads to.
  EXPECT_THAT(names, UnorderedElementsAre("same", "same", "set aside", "linked"));
  EXPECT_EQ(Norvik::Platform::CountLiveObjects(), Norvik::Platform::LiveObjects());
}

TEST(ServicesSection, AProgramThatWasSeenOnceCountsAsRunning) {
  MacRecording recording;
  recording.Add(LOCAL + "a.plist"s, Daemon({{"Label", Text("a")}, {"Program", Text("/sbin/run")}}));
  recording.PutInForce();
  ServicesSection section;
  std::vector<std::string> states;
  for (const char* processes : {"[]", R"([{"pid": 4, "path": "/sbin/run"}])", "[]"}) {
    recording.Add("processes.json", processes);
    std::list<ServiceInfo> services;
    section.GetInfo(services);
    states.push_back(ToUtf8(services.front().state));
  }
  EXPECT_THAT(states, ElementsAre("Stopped", "Running", "Running"));
}

}  // namespace
