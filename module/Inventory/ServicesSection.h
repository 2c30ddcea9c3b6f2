#pragma once

#include <wx/string.h>

#include <list>
#include <map>
#include <string>

#include "common/inventory/ISection.h"
#include "module/Entities/ServiceInfo.h"

namespace Norvik::KOB {

/// Daemons of the system, from the property lists of launchd. A daemon counts as running if the
/// program of a process has exactly the path of its command. Use one object per inventory: it never
/// forgets a program that it once saw running.
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
