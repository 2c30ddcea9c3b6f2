#pragma once

#include <wx/string.h>

#include <functional>
#include <istream>
#include <list>

#include "common/inventory/ISection.h"
#include "module/Entities/PrinterInfo.h"

namespace Norvik::KOB {

/// Printers of the print service, read from its configuration.
class PrintersSection final : public Common::ISection<std::list<PrinterInfo>> {
 public:
  void GetInfo(std::list<PrinterInfo>& result) override;
  /// Driver of a printer; empty if there is no driver file or it names none.
  wxString GetDriver(const wxString& name);
};

using DriverOfPrinter = std::function<wxString(const wxString& name)>;

/// The printers of a `printers.conf`; a section that is not closed is none. Two blanks side by side
/// stand for an empty word between them.
std::list<PrinterInfo> ReadPrintersConfiguration(std::istream& configuration,
                                                 const DriverOfPrinter& driverOf);

/// The file name behind the last "PCFileName" of a printer description (PPD); empty without one.
wxString ReadDriverName(std::istream& description);

}  // namespace Norvik::KOB
