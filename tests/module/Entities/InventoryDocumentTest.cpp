#include "module/Entities/InventoryReader.h"

#include <boost/property_tree/json_parser.hpp>

#include "module/Inventories.h"

namespace tests {

using namespace Norvik::KOB;
using boost::property_tree::json_parser_error;
using boost::property_tree::ptree_bad_data;
using boost::property_tree::ptree_bad_path;

std::string ReadAndWritten(const std::string& text) {
  std::istringstream stream(text);
  std::ostringstream written;
  ReadInventory(stream, "previous.jsonkob")->WriteTo(written);
  return written.str();
}

/// A C locale with a decimal comma, compiled for the test where the system has none.
class DecimalComma : Norvik::Tests::Scope {
 public:
  DecimalComma()
      : Scope([] {
          std::setlocale(LC_NUMERIC, "C");
          ::unsetenv("LOCPATH");
        }) {
    constexpr char NAME[] = "de_DE.UTF-8";
    if (std::setlocale(LC_NUMERIC, NAME)) return;
    const std::string compile = "localedef -i de_DE -f UTF-8 " + (folder_ / NAME).string();
    EXPECT_EQ(std::system(compile.c_str()), 0);
    ::setenv("LOCPATH", folder_.Path().c_str(), 1);
    EXPECT_TRUE(std::setlocale(LC_NUMERIC, NAME));
  }

 private:
  const Norvik::Tests::TemporaryFolder folder_;
};

TEST(InventoryReaderTest, ReadsFractionsUnderAnyLocale) {
  InventoryKOBInfo inventory;
  inventory.location.latitude = -33.4568;
  inventory.location.height = 1e-5;
  const std::string text = JsonText(inventory);
  {
    const DecimalComma comma;
    EXPECT_EQ(ReadAndWritten(text), text);
  }
  const CommaLocale comma;
  EXPECT_EQ(ReadAndWritten(text), text);
}

TEST(InventoryReaderTest, ReadsWhatWasWrittenRecordByRecord) {
  const ScopedLocale utf8("C.UTF-8");
  InventoryKOBInfo withoutLists = FilledInventory();
  withoutLists.software.clear();
  withoutLists.location = {};
  // Odd bytes that the writer accepts, at every position of the read buffer.
  InventoryKOBInfo withOddBytes = withoutLists;
  std::string& oddBytes = withOddBytes.networkDrives.front().path;
  for (int i = 0; i < 2000; ++i) {
    oddBytes += "\xED\xA0\x80 \xC0\xAF \xF7\xBF\xBF\xBF caf\xC3\xA9 \xF4\x8F\xBE\x80.";
  }
  for (const auto& inventory :
       {InventoryKOBInfo(), FilledInventory(), withoutLists, withOddBytes}) {
    EXPECT_EQ(ReadAndWritten(JsonText(inventory)), JsonText(inventory));
  }
}

TEST(InventoryReaderTest, RefusesWhatIsNoDocumentAndASectionThatIsMissingOrOfTheWrongKind) {
  const nlohmann::json whole = nlohmann::json::parse(JsonText(InventoryKOBInfo()));
  const auto with = [&](const char* key, const char* value) {
    auto document = whole;
    document[key] = nlohmann::json::parse(value);
    return document.dump();
  };
  for (const char* text :
       {"", "{", "{\"cdrom\":[{", "garbage", "{}}", "{\"cdrom\":nul}", "[\"\x80\"]", "[\"\xC3\"]",
        "[\"\xC3\xC3\xA9\"]", "[\"\xF8\x88\x80\x80\x80\"]"}) {
    EXPECT_THROW(ReadAndWritten(text), json_parser_error) << text;
  }
  EXPECT_THROW(ReadAndWritten("{\"os\":{\"a\":" + std::string(1 << 20, '[')), json_parser_error);
  for (const char* text : {"[]", "1", "null", "{}", "[{\"cdrom\":null}]"}) {
    EXPECT_THROW(ReadAndWritten(text), ptree_bad_path) << text;
  }
  for (const auto& [key, section] : whole.items()) {
    auto document = whole;
    document.erase(key);
    if (key == "device") {
      EXPECT_NO_THROW(ReadAndWritten(document.dump()));
    } else {
      EXPECT_THROW(ReadAndWritten(document.dump()), ptree_bad_path) << key;
    }
  }
  for (const char* value : {"1", "\"x\"", "true", "{\"name\":1}", "[1]", "[null]", "[[]]"}) {
    EXPECT_THROW(ReadAndWritten(with("printer", value)), ptree_bad_data) << value;
  }
  for (const char* value : {"1", "\"x\"", "[]", "[{}]"}) {
    EXPECT_THROW(ReadAndWritten(with("os", value)), ptree_bad_data) << value;
  }
  for (const auto& [key, forgiven] :
       {std::pair("novelty", "[[{\"a\":[1]}],2]"), {"bios", "{\"romSize\":\"many\"}"}}) {
    auto document = nlohmann::json::parse(ReadAndWritten(with(key, forgiven)));
    EXPECT_EQ(document, whole) << key;
  }
}

TEST(InventoryKOBInfoTest, ADocumentWithARecordInEachListHasTheTextOfTheWireFormat) {
  InventoryKOBInfo inventory;
  ForEachSection([&](const auto& section) {
    if constexpr (std::decay_t<decltype(section)>::isList) section.In(inventory).resize(1);
  });
  inventory.configuration.profileId = 7;
  inventory.configuration.agentVersion = "9.24";
  inventory.device.name = "mac-07";
  inventory.location.latitude = 41.25;
  inventory.firmware.date = 1577836800;
  inventory.cdroms.front().features = {"DVD", "CD"};
  inventory.monitors.front().serial = wxString::FromUTF8(std::string("A1\0B", 4));
  inventory.systemSlots.front().slotId = static_cast<int>(0xFFFFFFFFu);
  inventory.localUsers.groups.front().name = "staff";
  inventory.localUsers.groups.front().users = {"root", "ana"};
  inventory.sharedResources.front().permissions.resize(1);
  inventory.sharedResources.front().permissions.front().user = "everyone";
  inventory.videoCards.front().size = 1536;
  inventory.software.front().installDate = 1577836800;
  const std::string expected =
      GoldenText(NORVIK_SOURCE_DIR "/tests/module/Entities/small-document.json");
  EXPECT_EQ(JsonText(inventory), expected);
  auto back = ReadBack<InventoryKOBInfo>(expected);
  EXPECT_EQ(JsonText(back.device), JsonText(DeviceInfo()));
  back.device = inventory.device;
  EXPECT_EQ(JsonText(back), expected);
}

TEST(InventoryKOBInfoTest, TheTextDoesNotDependOnTheLocale) {
  const InventoryKOBInfo inventory = FilledInventory();
  const std::string text = JsonText(inventory);
  const ScopedLocale c("C");
  const CommaLocale comma;
  EXPECT_EQ(JsonText(inventory), text);
}

static_assert(std::has_virtual_destructor_v<InventoryKOBInfo>, "owned through this base");

}  // namespace tests
