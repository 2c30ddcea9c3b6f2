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

struct Row {
  const char* name;
  const char* configuration;
  std::vector<std::string> printers;
};

const Row ROWS[] = {
    {"a whole section",
     "<Printer office>\nDeviceURI ipp://host/queue\nInfo a b\nMakeModel Acme Laser\n</Printer>\n",
     {"office| a b|ipp://host/queue|driver of office|Acme"}},
    {"the default printer", "<DefaultPrinter x>\n</DefaultPrinter>\n", {"x|||driver of x|"}},
    {"comments and empty lines",
     "# Printer configuration\n\n<Printer p>\n#Info no\nInfo yes\n</Printer>\n",
     {"p| yes||driver of p|"}},
    {"a keyword behind a blank and anywhere on the line",
     "<Printer p>\n Info a\nUUID urn DeviceURI usb://x\n</Printer>\n",
     {"p| a|usb://x|driver of p|"}},
    {"a keyword is taken by its letters",
     "<Printer p>\ninfo a\nINFO b\nInfos c\n</Printer>\n",
     {"p|||driver of p|"}},
    {"Info twice", "<Printer p>\nInfo a\nInfo b\n</Printer>\n", {"p| a b||driver of p|"}},
    {"Info swallows keywords",
     "<Printer p>\nInfo at MakeModel x\n</Printer>\n",
     {"p| at MakeModel x||driver of p|"}},
    {"Info without text", "<Printer p>\nInfo\n</Printer>\n", {"p|||driver of p|"}},
    {"two blanks hold an empty word",
     "<Printer p>\nInfo a  b\nDeviceURI  usb://x\n</Printer>\n",
     {"p| a  b||driver of p|"}},
    {"the rest of MakeModel is walked on",
     "<Printer p>\nMakeModel A DeviceURI u\n</Printer>\n",
     {"p||u|driver of p|A"}},
    {"a keyword at the end of its line",
     "<Printer p>\nDeviceURI\n</Printer>\n",
     {"p|||driver of p|"}},
    {"a section that is not closed", "<Printer p>\nInfo a\n", {}},
    {"a section that another one cuts off",
     "<Printer p>\nInfo a\n<Printer q>\n</Printer>\n",
     {"q|||driver of q|"}},
    {"closed twice",
     "<Printer p>\nInfo a\n</Printer>\n</Printer>\n",
     {"p| a||driver of p|", "p| a||driver of p|"}},
    {"line ends of another system",
     "<Printer p>\r\nInfo a\r\n</Printer>\r\n",
     {"p| a||driver of p|"}},
    {"other alphabets",
     "<Printer b\xC3\xBCro>\nInfo \xE5\x8D\xB0\n</Printer>\n",
     {"b\xC3\xBCro| \xE5\x8D\xB0||driver of b\xC3\xBCro|"}},
    {"nothing", "", {}},
};

TEST(PrintersConfiguration, IsReadWordByWord) {
  for (const Row& row : ROWS) {
    std::istringstream stream(row.configuration);
    const auto printers =
        ReadPrintersConfiguration(stream, [](const wxString& name) { return "driver of " + name; });
    EXPECT_EQ(Texts(printers), row.printers) << row.name;
  }
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
