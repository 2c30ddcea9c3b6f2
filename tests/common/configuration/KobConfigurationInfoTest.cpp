#include "common/configuration/KobConfigurationInfo.h"

#include <iomanip>

#include "support/Test.h"

namespace {

using Info = Norvik::Common::KobConfigurationInfo;
using namespace Norvik::Tests;
using Norvik::Common::ScheduleInfo;
using Texts = std::vector<std::string>;

std::string TextOf(const Info& info) {
  std::ostringstream stream;
  stream << info;
  return stream.str();
}

TEST(KobConfigurationInfo, HasADifferentTextForEveryDifference) {
  const Json& different = DataOf("common/configuration/different.json");
  const auto contents = different["lists"].get<std::vector<Texts>>();
  std::vector<ScheduleInfo> schedules;
  for (const Json& row : different["schedules"]) schedules.push_back({row[0], row[1]});
  std::vector<Info> infos(2);
  infos[1].inventoryOnLogon = true;
  for (const auto list : {&Info::excludedFiles, &Info::excludedPaths, &Info::additionalExtensions,
                          &Info::includedExtensions}) {
    for (const auto& content : contents) infos.emplace_back().*list = content;
  }
  for (const auto member : {&Info::inventorySchedule, &Info::fileInventoryIncrementalSchedule,
                            &Info::fileInventorySchedule, &Info::pendingTasksSchedule}) {
    for (const auto& schedule : schedules) infos.emplace_back().*member = schedule;
  }
  std::set<std::string> texts;
  for (const auto& info : infos) EXPECT_TRUE(texts.insert(TextOf(info)).second) << TextOf(info);
}

TEST(KobConfigurationInfo, HasOneTextUnderEveryLocaleAndStreamSetting) {
  Info info;
  info.excludedFiles.assign(12345, "x");
  info.inventorySchedule = ScheduleInfo{86400, 1767225600};
  const std::string text = TextOf(info);
  const tests::CommaLocale locale;
  std::ostringstream stream;
  stream << std::hex << std::showpos << std::setw(100000) << info;
  EXPECT_EQ(stream.str(), text);
}

}  // namespace
