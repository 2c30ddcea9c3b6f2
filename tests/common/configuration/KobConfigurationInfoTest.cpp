#include "common/configuration/KobConfigurationInfo.h"

#include <gtest/gtest.h>

#include <iomanip>
#include <set>
#include <sstream>

#include "support/CommaLocale.h"

namespace {

using Info = Norvik::Common::KobConfigurationInfo;
using Norvik::Common::ScheduleInfo;
using Texts = std::vector<std::string>;

std::string TextOf(const Info& info) {
  std::ostringstream stream;
  stream << info;
  return stream.str();
}

TEST(KobConfigurationInfo, HasADifferentTextForEveryDifference) {
  const Texts contents[] = {{""},
                            {"", ""},
                            {"a"},
                            {"a", "b"},
                            {"ab"},
                            {"a,b"},
                            {"a,1:b"},
                            {"b", "a"},
                            {"a", ""},
                            {"", "a"},
                            {"a];excludedPaths=1[1:a"},
                            {"none"},
                            {std::string("\0", 1)}};
  const ScheduleInfo schedules[] = {{0, 0}, {1, 0}, {0, 1}, {11, 1}, {1, 11}, {-1, 1}};
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
