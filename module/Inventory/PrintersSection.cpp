#include "module/Inventory/PrintersSection.h"

#include <algorithm>
#include <fstream>
#include <string>

#include "common/log/Logger.h"
#include "common/text/Text.h"
#include "platform/MachinePath.h"

namespace Norvik::KOB {

namespace {

constexpr char PRINTERS_FILE[] = "/etc/cups/printers.conf";

wxString WordText(const std::string& word) { return Common::WxStringFromStdString(word); }

/// The words of a line, split like the default mode of wxStringTokenizer: if one of the delimiters
/// is not white space, there is an empty word between two delimiters. The time is linear in the
/// length of the line, unlike that of wxStringTokenizer.
class LineWords {
 public:
  LineWords(const std::string& line, const char* delimiters, bool keepEmpty)
      : line_(line),
        delimiters_(delimiters),
        keepEmpty_(keepEmpty),
        end_(line.find_last_not_of(delimiters) + 1) {}

  bool HasMore() const { return at_ < end_; }
  /// Empty after the last word.
  std::string Next() {
    if (!HasMore()) return {};
    if (!keepEmpty_) at_ = line_.find_first_not_of(delimiters_, at_);
    const std::size_t begin = at_;
    const std::size_t end = std::min(line_.find_first_of(delimiters_, begin), line_.size());
    at_ = end + 1;
    return line_.substr(begin, end - begin);
  }

 private:
  const std::string& line_;
  const char* delimiters_;
  bool keepEmpty_;
  std::size_t end_;  ///< of the last word
  std::size_t at_ = 0;
};

/// Calls `read` with each line that is neither empty nor a comment.
template <class Read>
void ForEachLine(std::istream& stream, Read read) {
  std::string line;
  while (std::getline(stream, line)) {
    if (!line.empty() && line.front() != '#') read(line);
  }
}

/// Reads `printers.conf` word by word. A keyword counts at any position in a line.
class PrintersReader {
 public:
  PrintersReader(const DriverOfPrinter& driverOf, std::list<PrinterInfo>& printers)
      : driverOf_(driverOf), printers_(printers) {}

  void ReadLine(const std::string& line) {
    LineWords words(line, "\n\r >", true);
    while (words.HasMore()) ReadWord(words.Next(), words);
  }

 private:
  void ReadWord(const std::string& word, LineWords& rest) {
    if (word == "<Printer" || word == "<DefaultPrinter") {
      current_ = PrinterInfo();
      current_.name = WordText(rest.Next());
      current_.driverName = driverOf_(current_.name);
    } else if (word == "DeviceURI") {
      current_.port = WordText(rest.Next());
    } else if (word == "Info") {
      // Deliberately a space before the first word as well: the server expects it.
      while (rest.HasMore()) current_.description += " " + WordText(rest.Next());
    } else if (word == "MakeModel") {
      current_.manufacturer = WordText(rest.Next());
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
  ForEachLine(configuration, [&](const std::string& line) { reader.ReadLine(line); });
  return printers;
}

wxString ReadDriverName(std::istream& description) {
  wxString driver;
  ForEachLine(description, [&](const std::string& line) {
    LineWords words(line, " \t\r\n", false);
    while (words.HasMore()) {
      if (words.Next().find("PCFileName") == std::string::npos) continue;
      driver = WordText(words.Next());
      driver.Replace("\"", "");
    }
  });
  return driver;
}

void PrintersSection::GetInfo(std::list<PrinterInfo>& result) {
  NORVIK_SCOPE();
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
  // Deliberately in the encoding of the locale, not UTF-8: the print service names its files so.
  const wxCharBuffer path = ("/etc/cups/ppd/" + name + ".ppd").mb_str(wxConvLibc);
  std::ifstream description(Platform::MachinePath(path.data() ? path.data() : ""));
  return ReadDriverName(description);
}

}  // namespace Norvik::KOB
