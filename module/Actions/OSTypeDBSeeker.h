#pragma once

#include "common/database/DataBase.h"
#include "common/text/OperatingSystemType.h"

namespace Norvik::KOB {

/// Source of the operating-system type that the agent has recorded.
class IOSTypeSeeker {
 public:
  virtual ~IOSTypeSeeker() = default;
  /// `OperatingSystemType::Types` as a number; -1 while none is recorded.
  virtual int GetOSType() const = 0;

 protected:
  IOSTypeSeeker() = default;
  IOSTypeSeeker(const IOSTypeSeeker&) = default;
  IOSTypeSeeker& operator=(const IOSTypeSeeker&) = default;
};

/// Reads the type from the agent database; throws what the database throws.
class OSTypeDBSeeker final : public IOSTypeSeeker {
 public:
  int GetOSType() const override {
    const auto recorded =
        Common::V2::DataBase::GetOptionalStringDataTable(Common::OPERATING_SYSTEM_AGENT_DATA);
    return recorded ? static_cast<int>(Common::OperatingSystemType::FromString(*recorded)) : -1;
  }
};

}  // namespace Norvik::KOB
