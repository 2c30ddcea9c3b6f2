#pragma once

#include <wx/string.h>

#include <list>
#include <map>
#include <string>

#include "common/inventory/ISection.h"
#include "module/Entities/ServiceInfo.h"

namespace Norvik::KOB {

/// Daemons of the system, from the property lists of launchd. A daemon runs if a process has the
/// very path of its command as its program. Keep one object for one state of the machine: a program
/// that was seen once counts as running as long as the object lives.
class ServicesSection final : public Common::ISection<std::list<ServiceInfo>> {
 public:
  void GetInfo(std::list<ServiceInfo>& result) override;
  /// Appends the daemon of one file, unless the file cannot be read or has no label.
  void ParsePList(std::list<ServiceInfo>& result, const wxString& path);

 private:
  void FindProcesses();

  std::map<std::string, int> processOfProgram_;
};

}  // namespace Norvik::KOB
