#include "common/configuration/KobConfigurationInfo.h"

#include <gtest/gtest.h>

#include <iomanip>
#include <map>
#include <sstream>

#include "support/CommaLocale.h"

namespace {

using namespace Norvik::Common;

std::string TextOf(const KobConfigurationInfo& info) {
  std::ostringstream stream;
  stream << info;
  return stream.str();
}

using Change = std::function<void(KobConfigurationInfo&)>;

TEST(KobConfigurationInfo, HasADifferentTextForEveryDifference) {
  const std::vector<std::string> KobConfigurationInfo::*lists[] = {
      &KobConfigurationInfo::excludedFiles, &KobConfigurationInfo::excludedPaths,
      &KobConfigurationInfo::additionalExtensions, &KobConfigurationInfo::includedExtensions};
  boost::optional<ScheduleInfo> KobConfigurationInfo::*schedules[] = {
      &KobConfigurationInfo::inventorySchedule,
      &KobConfigurationInfo::fileInventoryIncrementalSchedule,
      &KobConfigurationInfo::fileInventorySchedule, &KobConfigurationInfo::pendingTasksSchedule};
  const std::vector<std::vector<std::string>> contents = {{""},
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

  std::map<std::string, int> texts;
  const auto count = [&](const Change& change) {
    KobConfigurationInfo info;
    change(info);
    ++texts[TextOf(info)];
  };
  std::size_t made = 2;
  count([](auto&) {});
  count([](auto& info) { info.inventoryOnLogon = true; });
  for (const auto list : lists) {
    for (const auto& content : contents) {
      count([&](auto& info) {
        info.*const_cast<std::vector<std::string> KobConfigurationInfo::*>(list) = content;
      });
      ++made;
    }
  }
  for (const auto schedule : schedules) {
    for (const ScheduleInfo when :
         {ScheduleInfo{0, 0}, {1, 0}, {0, 1}, {11, 1}, {1, 11}, {-1, 1}}) {
      count([&](auto& info) { info.*schedule = when; });
      ++made;
    }
  }
  EXPECT_EQ(texts.size(), made);
}

TEST(KobConfigurationInfo, HasOneTextUnderEveryLocaleAndStreamSetting) {
  KobConfigurationInfo info;
  info.excludedFiles.assign(12345, "x");
  info.inventorySchedule = ScheduleInfo{86400, 1767225600};
  const std::string text = TextOf(info);
  const tests::CommaLocale locale;
  std::ostringstream stream;
  stream << std::hex << std::showpos << std::setw(100000) << info;
  EXPECT_EQ(stream.str(), text);
}

}  // namespace
