#pragma once

#include <list>
#include <utility>
#include <vector>

#include "common/inventory/ISection.h"
#include "common/records/MemoryInfo.h"
#include "common/records/NetworkAdapterInfo.h"
#include "common/records/OperatingSystemInfo.h"
#include "common/records/PhysicalDiskInfo.h"
#include "common/records/ProcessorInfo.h"
#include "common/records/SetupInfo.h"

namespace Norvik::KOB {

/// Returns a copy of a record that the agent gathered earlier for its own use.
template <class Record>
class GivenRecordSection final : public Common::ISection<Record> {
 public:
  explicit GivenRecordSection(Record record) : record_(std::move(record)) {}
  void GetInfo(Record& result) override { result = record_; }

 private:
  Record record_;
};

/// Appends, in order, copies of records that the agent gathered earlier for its own use.
template <class Record>
class GivenListSection final : public Common::ISection<std::list<Record>> {
 public:
  explicit GivenListSection(std::vector<Record> records) : records_(std::move(records)) {}
  void GetInfo(std::list<Record>& result) override {
    result.insert(result.end(), records_.begin(), records_.end());
  }

 private:
  std::vector<Record> records_;
};

using MemorySection = GivenRecordSection<Common::MemoryInfo>;
using OperatingSystemSection = GivenRecordSection<Common::OperatingSystemInfo>;
using SetupSection = GivenRecordSection<Common::SetupInfo>;
using NetworkAdaptersSection = GivenListSection<Common::NetworkAdapterInfo>;
using PhysicalDisksSection = GivenListSection<Common::PhysicalDiskInfo>;
using ProcessorsSection = GivenListSection<Common::ProcessorInfo>;

}  // namespace Norvik::KOB
