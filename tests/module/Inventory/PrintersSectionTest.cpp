#include "module/Inventory/PrintersSection.h"

#include <gmock/gmock.h>

#include <boost/filesystem/operations.hpp>
#include <sstream>

#include "common/text/Text.h"
#include "support/FakeHost.h"
#include "support/Files.h"

namespace Norvik::KOB {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using namespace Tests;

/// A printer as "name|description|port|driver|manufacturer".
std::vector<std::string> Texts(const std::list<PrinterInfo>& printers) {
  std::vector<std::string> texts;
  for (const auto& it : printers) {
    texts.push_back(Common::ToUtf8(it.name + "|" + it.description + "|" + it.port + "|" +
                                   it.driverName + "|" + it.manufacturer));
  }
  return texts;
}

/// Configurations and their printers, the driver of "p" being "D:p".
const std::pair<const char*, std::vector<std::string>> SECTIONS[] = {
    {"<Printer office>\nDeviceURI ipp://host/queue\nInfo a b\nMakeModel Acme Laser\n</Printer>\n",
     {"office| a b|ipp://host/queue|D:office|Acme"}},
    {"<DefaultPrinter x>\n</DefaultPrinter>\n", {"x|||D:x|"}},
    {"<Printer not closed>\nInfo a\n", {}},
    {"<Printer cut off>\nInfo a\n<Printer q>\n</Printer>\n", {"q|||D:q|"}},
    {"<Printer p>\nInfo a\n</Printer>\n</Printer>\n", {"p| a||D:p|", "p| a||D:p|"}},
    {"<Printer p>\r\nInfo a\r\n</Printer>\r\n", {"p| a||D:p|"}},
    {"<Printer b\xC3\xBCro>\nInfo \xE5\x8D\xB0\n</Printer>\n",
     {"b\xC3\xBCro| \xE5\x8D\xB0||D:b\xC3\xBCro|"}},
    {"", {}},
};

/// Lines of a closed section for "p", and what follows its name.
const struct {
  const char* lines;
  const char* description;
  const char* port;
  const char* manufacturer;
} LINES[] = {
    {"#Info no\n\nInfo yes", " yes", "", ""},
    {" Info a\nUUID urn DeviceURI usb://x", " a", "usb://x", ""},  // anywhere on the line
    {"info a\nINFO b\nInfos c", "", "", ""},                       // by its letters
    {"Info a\nInfo b", " a b", "", ""},
    {"Info at MakeModel x", " at MakeModel x", "", ""},  // swallows keywords
    {"Info", "", "", ""},
    {"Info a  b\nDeviceURI  usb://x", " a  b", "", ""},  // two blanks hold an empty word
    {"MakeModel A DeviceURI u", "", "u", "A"},           // the rest is walked on
    {"DeviceURI\xFF MakeModel \xFF", "", "", ""},        // no UTF-8
    {"Attribute m Info x\nInfo", " x", "", ""},
    {"DeviceURI", "", "", ""},
};

std::vector<std::string> Read(const std::string& configuration) {
  std::istringstream stream(configuration);
  return Texts(ReadPrintersConfiguration(stream, [](const wxString& name) { return "D:" + name; }));
}

TEST(PrintersConfiguration, IsReadWordByWord) {
  for (const auto& [text, printers] : SECTIONS) EXPECT_EQ(Read(text), printers) << text;
  for (const auto& [lines, description, port, manufacturer] : LINES) {
    EXPECT_THAT(Read("<Printer p>\n" + std::string(lines) + "\n</Printer>\n"),
                ElementsAre(std::string("p|") + description + "|" + port + "|D:p|" + manufacturer))
        << lines;
  }
}

TEST(PrintersConfiguration, IsReadInTimeThatGrowsWithItsSize) {
  const std::string blanks(1000000, ' ');
  EXPECT_THAT(Read("<Printer p>\n" + blanks + "DeviceURI u\n</Printer>" + blanks + "\n"),
              ElementsAre("p||u|D:p|"));
}

TEST(DriverName, IsTheLastPcFileName) {
  const std::pair<const char*, const char*> cases[] = {
      {"*PCFileName: \"HPLJ4.PPD\"\n", "HPLJ4.PPD"},
      {"*PCFileName: \"A.PPD\"\n*PCFileName: \"B.PPD\"\n", "B.PPD"},
      {"# *PCFileName: \"A.PPD\"\n", ""},
      {"*ModelName: \"x\"\n\n", ""},
      {"*PCFileName:\n", ""},
      {"x\tPCFileName\t\"TAB.PPD\"\r\n", "TAB.PPD"},
      {"*PCFileName: A\"B\"C\n", "ABC"},
      {"*pcfilename: \"A.PPD\"\n", ""},
      {"*PPD-Adobe: \"4.3\"\r# old\r*PCFileName: \"CR.PPD\"\r*End\r", "CR.PPD"},
      {"", ""},
  };
  for (const auto& [text, driver] : cases) {
    std::istringstream stream(text);
    EXPECT_EQ(ReadDriverName(stream), driver) << text;
  }
}

TEST(PrintersSection, ReadsTheMachinesFiles) {
  FakeHost host;
  const auto root = host.Folder() / "machine";
  boost::filesystem::create_directories(root / "etc/cups/ppd");
  host.UseMachine(root);
  std::list<PrinterInfo> printers;
  PrintersSection section;
  section.GetInfo(printers);
  EXPECT_THAT(printers, IsEmpty());
  EXPECT_TRUE(host.log.Holds(4, "/etc/cups/printers.conf not found"));

  WriteFile(root / "etc/cups/printers.conf",
            "<Printer a>\n</Printer>\n<Printer b>\n</Printer>\n<Printer ../ppd/a>\n</Printer>\n");
  WriteFile(root / "etc/cups/ppd/a.ppd", "*PCFileName: \"A.PPD\"\n");
  WriteFile(root / "etc/cups/ppd/b.ppd", "*PPD-Adobe: \"4.3\"\n");
  section.GetInfo(printers);
  EXPECT_THAT(Texts(printers), ElementsAre("a|||A.PPD|", "b||||", "../ppd/a|||A.PPD|"));
}

}  // namespace
}  // namespace Norvik::KOB
