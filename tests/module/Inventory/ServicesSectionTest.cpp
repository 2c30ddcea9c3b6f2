#include "module/Inventory/ServicesSection.h"

#include <gmock/gmock.h>

#include "common/text/Text.h"
#include "support/MacRecording.h"

namespace Norvik::KOB {
namespace {

using namespace Tests;
using testing::ElementsAre;

constexpr char LOCAL[] = "root/Library/LaunchDaemons/";

std::string Labelled(const std::string& label) {
  return PropertyListOf(Json{{"Label", label}, {"Program", "/sbin/run"}});
}

/// Label and state of each service, in order.
std::vector<std::string> Services(ServicesSection& section) {
  std::list<ServiceInfo> services;
  section.GetInfo(services);
  std::vector<std::string> texts;
  for (const auto& it : services) texts.push_back(Common::ToUtf8(it.name + " " + it.state));
  return texts;
}

TEST(ServicesSection, ListsBothFoldersAndNoOther) {
  MacRecording recording;
  recording.Add("processes.json", "[]").Add("linked", Labelled("linked"));
  recording.Add("root/System/Library/LaunchDaemons/same.plist", Labelled("same"));
  recording.Add("root/Library/LaunchAgents/a.plist", Labelled("agent"));
  for (const std::string name :
       {"same.plist", "aside.plist.bak", "notes.txt", "folder.plist/a.plist"}) {
    recording.Add(LOCAL + name, Labelled(name));
  }
  recording.Add(std::string(LOCAL) + "damaged.plist", "<plist><dict>");
  for (const std::string target : {"linked", "root"}) {
    boost::filesystem::create_symlink(recording.Path() / target,
                                      recording.Path() / LOCAL / (target + ".plist"));
  }
  recording.PutInForce();
  ServicesSection section;
  const auto services = Services(section);
  EXPECT_EQ(services.front(), "same Stopped");
  // A link counts as a file, whatever it leads to.
  EXPECT_THAT(services, testing::UnorderedElementsAre("same Stopped", "same.plist Stopped",
                                                      "aside.plist.bak Stopped", "linked Stopped"));
}

TEST(ServicesSection, AProgramThatWasSeenOnceCountsAsRunning) {
  MacRecording recording;
  recording.Add(std::string(LOCAL) + "a.plist", Labelled("a"));
  recording.PutInForce();
  ServicesSection section;
  const std::pair<const char*, const char*> rows[] = {
      {"[]", "a Stopped"},
      {R"([{"pid": 4, "path": "/sbin/run"}])", "a Running"},
      {"[]", "a Running"}};
  for (const auto& [processes, service] : rows) {
    recording.Add("processes.json", processes);
    EXPECT_THAT(Services(section), ElementsAre(service));
  }
}

}  // namespace
}  // namespace Norvik::KOB
