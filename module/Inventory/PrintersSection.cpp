#include "module/Inventory/PrintersSection.h"

#include <wx/tokenzr.h>

#include <fstream>
#include <string>

#include "common/log/Logger.h"
#include "common/text/Text.h"
#include "platform/MachinePath.h"

namespace Norvik::KOB {

namespace {

constexpr char PRINTERS_FILE[] = "/etc/cups/printers.conf";

/// Calls `read` with the words of each line that is neither empty nor a comment.
template <class Read>
void ForEachLine(std::istream& stream, const char* delimiters, Read read) {
  std::string line;
  while (std::getline(stream, line)) {
    if (line.empty() || line.front() == '#') continue;
    wxStringTokenizer words(Common::WxStringFromStdString(line), delimiters);
    read(words);
  }
}

/// Reads `printers.conf` word by word. A keyword counts wherever it stands on its line.
class PrintersReader {
 public:
  PrintersReader(const DriverOfPrinter& driverOf, std::list<PrinterInfo>& printers)
      : driverOf_(driverOf), printers_(printers) {}

  void ReadLine(wxStringTokenizer& words) {
    while (words.HasMoreTokens()) ReadWord(words.GetNextToken(), words);
  }

 private:
  void ReadWord(const wxString& word, wxStringTokenizer& rest) {
    if (word == "<Printer" || word == "<DefaultPrinter") {
      current_ = PrinterInfo();
      current_.name = rest.GetNextToken();
      current_.driverName = driverOf_(current_.name);
    } else if (word == "DeviceURI") {
      current_.port = rest.GetNextToken();
    } else if (word == "Info") {
      // Deliberately a blank before the first word as well: the server knows it so.
      while (rest.HasMoreTokens()) current_.description += " " + rest.GetNextToken();
    } else if (word == "MakeModel") {
      current_.manufacturer = rest.GetNextToken();
    } else if (word == "</Printer" || word == "</DefaultPrinter") {
      printers_.push_back(current_);
    }
  }

  const DriverOfPrinter& driverOf_;
  std::list<PrinterInfo>& printers_;
  PrinterInfo current_;
};

}  // namespace

std::list<PrinterInfo> ReadPrintersConfiguration(std::istream& configuration,
                                                 const DriverOfPrinter& driverOf) {
  std::list<PrinterInfo> printers;
  PrintersReader reader(driverOf, printers);
  ForEachLine(configuration, "\n\r >", [&](wxStringTokenizer& words) { reader.ReadLine(words); });
  return printers;
}

wxString ReadDriverName(std::istream& description) {
  wxString driver;
  ForEachLine(description, " \t\r\n", [&](wxStringTokenizer& words) {
    while (words.HasMoreTokens()) {
      if (!words.GetNextToken().Contains("PCFileName")) continue;
      driver = words.GetNextToken();
      driver.Replace("\"", "");
    }
  });
  return driver;
}

void PrintersSection::GetInfo(std::list<PrinterInfo>& result) {
  std::ifstream configuration(Platform::MachinePath(PRINTERS_FILE));
  if (!configuration) {
    NORVIK_INFORMATION("/etc/cups/printers.conf not found");
    return;
  }
  result.splice(result.end(),
                ReadPrintersConfiguration(
                    configuration, [this](const wxString& name) { return GetDriver(name); }));
}

wxString PrintersSection::GetDriver(const wxString& name) {
  // Deliberately by the locale, not as UTF-8: the print service names its files so.
  const wxCharBuffer path = ("/etc/cups/ppd/" + name + ".ppd").mb_str(wxConvLibc);
  std::ifstream description(Platform::MachinePath(path.data() ? path.data() : ""));
  return ReadDriverName(description);
}

}  // namespace Norvik::KOB
