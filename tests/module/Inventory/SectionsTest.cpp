#include <gmock/gmock.h>

#include <boost/core/demangle.hpp>

#include "common/text/Text.h"
#include "module/CommonInventorySections/AlternativeBiosSection.h"
#include "module/CommonInventorySections/BiosSection.h"
#include "module/CommonInventorySections/BoardSlotsSection.h"
#include "module/Inventory/CSharedResourcesSection.h"
#include "module/Inventory/CdromSection.h"
#include "module/Inventory/HardwareSection.h"
#include "module/Inventory/KeyboardSection.h"
#include "module/Inventory/MonitorsSection.h"
#include "module/Inventory/NetworkDrivesSection.h"
#include "module/Inventory/PrintersSection.h"
#include "module/Inventory/ServicesSection.h"
#include "module/Inventory/VideoSection.h"
#include "platform/compat/LiveObjects.h"
#include "support/FixedFilesLock.h"
#include "support/LogCapture.h"
#include "support/MacRecording.h"
#include "support/RecordJson.h"
#include "support/SmbiosTable.h"
#include "support/TimeZone.h"

namespace Norvik::KOB {
namespace {

using namespace Tests;
using SharedSmBios = std::shared_ptr<Common::SmBios>;

struct Told {
  Json records;
  std::string raised;  ///< type of the exception
};

template <class Section, class Value>
Told Ask(Section section, void (Section::*getInfo)(Value&)) {
  Told told;
  Value value;
  try {
    (section.*getInfo)(value);
  } catch (const std::exception& error) {
    told.raised = boost::core::demangle(typeid(error).name());
  }
  told.records = JsonOf(value);
  if (!told.records.is_array()) told.records = Json::array({told.records});
  return told;
}

template <class Section>
Told AskOf(const SharedSmBios& smBios) {
  if constexpr (std::is_default_constructible_v<Section>) {
    return Ask(Section(), &Section::GetInfo);
  } else if constexpr (std::is_constructible_v<Section, SharedSmBios>) {
    return Ask(Section(smBios), &Section::GetInfo);
  } else {
    return Ask(Section({}), &Section::GetInfo);
  }
}

const std::map<std::string, Told (*)(const SharedSmBios&)> SECTIONS = {
    {"bios", AskOf<BiosSection>},
    {"bios-without-smbios", AskOf<AlternativeBiosSection>},
    {"board-slots", AskOf<BoardSlotsSection>},
    {"cdrom", AskOf<CdromSection>},
    {"hardware", AskOf<HardwareSection>},
    {"keyboard", AskOf<KeyboardSection>},
    {"monitors", AskOf<MonitorsSection>},
    {"network-drives", AskOf<NetworkDrivesSection>},
    {"printers", AskOf<PrintersSection>},
    {"services", AskOf<ServicesSection>},
    {"shares", AskOf<CSharedResourcesSection>},
    {"video", AskOf<VideoSection>},
};

/// In a value of a case, "see: name" stands for what the case, or its file, has under the name.
Json Resolved(Json value, const Json& entry) {
  if (value.is_string() && value.get_ref<const std::string&>().rfind("see: ", 0) == 0) {
    return Resolved(entry.at(value.get<std::string>().substr(5)), entry);
  }
  if (value.is_structured()) {
    for (Json& inner : value) inner = Resolved(inner, entry);
  }
  return value;
}

struct Case {
  Json entry;
  friend void PrintTo(const Case& shown, std::ostream* stream) {
    *stream << shown.entry["name"].get<std::string>();
  }
};

/// What a case does not say stands in its file.
std::vector<Case> AllCases() {
  std::vector<Case> cases;
  for (const auto& [section, ask] : SECTIONS) {
    Json file = DataOf("module/Inventory/sections/" + section + ".json");
    for (const Json& row : std::exchange(file["cases"], nullptr)) {
      Json entry = file;
      entry.update(row);
      entry["section"] = section;
      for (const char* part : {"answers", "files", "registry", "smBios", "records"}) {
        if (entry.contains(part)) entry[part] = Resolved(entry[part], entry);
      }
      cases.push_back({entry});
    }
  }
  return cases;
}

/// The working directory is a folder of the test's: a collector leaves a file there.
class Sections : public testing::TestWithParam<Case> {
 protected:
  Sections() {
    boost::filesystem::current_path(folder_.Path());
    const Json& entry = GetParam().entry;
    for (const auto& [call, answer] : PartOf(entry, "answers").items()) {
      recording_.AddAnswer(call, answer);
    }
    for (const auto& [name, content] : PartOf(entry, "files").items()) {
      const std::string text =
          content.is_string() ? content.get<std::string>() : PropertyListOf(content);
      name[0] == '/' ? WriteFile(name, text) : void(recording_.Add(name, text));
    }
    if (entry.contains("registry")) recording_.AddRegistry(entry["registry"]);
    recording_.PutInForce();
  }
  ~Sections() override { boost::filesystem::current_path(previous_); }

 private:
  const boost::filesystem::path previous_ = boost::filesystem::current_path();
  const FixedFilesLock lock_;
  const TimeZone utc_{"UTC0"};
  TemporaryFolder folder_;
  MacRecording recording_;
};

TEST_P(Sections, TellWhatTheMachineHas) {
  const Json& entry = GetParam().entry;
  const LogCapture log;
  const auto smBios = std::make_shared<Common::SmBios>(entry.value("smBiosVersion", 0x301u),
                                                       SmbiosTableOf(PartOf(entry, "smBios")));
  const Told told = SECTIONS.at(entry["section"])(smBios);
  const Json wanted = entry.value("records", Json::array());
  EXPECT_EQ(Shown(Chosen(told.records, wanted)), Shown(wanted));
  EXPECT_THAT(told.raised, testing::EndsWith(entry.value("raises", "")));
  EXPECT_EQ(told.raised.empty(), !entry.contains("raises")) << told.raised;
  for (const auto& [level, texts] : PartOf(entry, "log").items()) {
    std::vector<testing::Matcher<std::string>> beginnings;
    for (const std::string text : texts) beginnings.push_back(testing::StartsWith(text));
    EXPECT_THAT(log.Texts(std::stoi(level)), testing::ElementsAreArray(beginnings)) << level;
  }
  for (const auto& [name, content] : PartOf(entry, "leaves").items()) {
    EXPECT_EQ(ContentOf(name), content) << name;
  }
  EXPECT_EQ(Platform::CountLiveObjects(), Platform::LiveObjects());
}

/// Words as the name of a test: "no tool" as "NoTool".
std::string Joined(const std::string& words) {
  std::string name;
  bool begins = true;
  for (const char letter : words) {
    const bool isPart = std::isalnum(static_cast<unsigned char>(letter)) != 0;
    if (isPart) name += static_cast<char>(begins ? std::toupper(letter) : letter);
    begins = !isPart;
  }
  return name;
}

INSTANTIATE_TEST_SUITE_P(Cases, Sections, testing::ValuesIn(AllCases()), [](const auto& row) {
  return Joined(row.param.entry["section"]) + "_" + Joined(row.param.entry["name"]);
});

}  // namespace
}  // namespace Norvik::KOB
