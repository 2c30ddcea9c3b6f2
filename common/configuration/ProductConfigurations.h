#pragma once

#include <boost/optional.hpp>
#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "common/Api.h"
#include "common/configuration/ScheduleInfo.h"

// Configurations of the other products of the agent. They are parts of `AgentConfigurationInfo`,
// which this product copies as a whole; it reads none of them.

namespace Norvik::Common {

struct DuvConfigurationInfo {
  boost::optional<ScheduleInfo> schedule;
  boost::optional<ScheduleInfo> secondSchedule;
  bool enabled = false;
};

struct NORVIK_COMMON_API HoltConfigurationInfo {
  HoltConfigurationInfo() = default;
  HoltConfigurationInfo(const HoltConfigurationInfo&) = default;
  HoltConfigurationInfo& operator=(const HoltConfigurationInfo&) = default;
  virtual ~HoltConfigurationInfo();

  boost::optional<ScheduleInfo> schedule;
  boost::optional<ScheduleInfo> secondSchedule;
};

struct PyrConfigurationInfo {
  boost::optional<ScheduleInfo> schedule;
};

struct NORVIK_COMMON_API SoftwareIdentificationInfo {
  SoftwareIdentificationInfo() = default;
  SoftwareIdentificationInfo(const SoftwareIdentificationInfo&) = default;
  SoftwareIdentificationInfo& operator=(const SoftwareIdentificationInfo&) = default;
  virtual ~SoftwareIdentificationInfo();

  std::string name;
  std::string version;
  std::string publisher;
};

struct NORVIK_COMMON_API SoftwareUsageInfo {
  SoftwareUsageInfo() = default;
  SoftwareUsageInfo(const SoftwareUsageInfo&) = default;
  SoftwareUsageInfo& operator=(const SoftwareUsageInfo&) = default;
  virtual ~SoftwareUsageInfo();

  std::vector<std::uint8_t> data;
  std::uint64_t value = 0;
  std::uint8_t mode = 0;
  boost::optional<std::chrono::minutes> idle;
  std::vector<SoftwareIdentificationInfo> software;
};

struct NORVIK_COMMON_API GlyConfigurationInfo {
  GlyConfigurationInfo() = default;
  GlyConfigurationInfo(const GlyConfigurationInfo&) = default;
  GlyConfigurationInfo& operator=(const GlyConfigurationInfo&) = default;
  virtual ~GlyConfigurationInfo();

  boost::optional<ScheduleInfo> schedule;
  boost::optional<SoftwareUsageInfo> usage;
};

struct QorConfigurationInfo {
  bool enabled = false;
  boost::optional<std::string> first;
  std::uint64_t firstValue = 0;
  boost::optional<std::string> second;
  boost::optional<std::string> third;
  std::uint64_t secondValue = 0;
};

}  // namespace Norvik::Common
