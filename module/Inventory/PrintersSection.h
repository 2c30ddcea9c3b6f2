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
  /// Driver of a printer; empty if it has no driver file or the file names no driver.
  wxString GetDriver(const wxString& name);
};

/// Returns the driver of the printer with that name; may be empty.
using DriverOfPrinter = std::function<wxString(const wxString& name)>;

/// The printers in a `printers.conf`. A section that is not closed is ignored. Two adjacent spaces
/// enclose an empty word.
std::list<PrinterInfo> ReadPrintersConfiguration(std::istream& configuration,
                                                 const DriverOfPrinter& driverOf);

/// The file name after the last "PCFileName" in a printer description (PPD); empty without one.
wxString ReadDriverName(std::istream& description);

}  // namespace Norvik::KOB
