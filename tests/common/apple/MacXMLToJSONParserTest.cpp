#include "common/apple/MacXMLToJSONParser.h"

#include <boost/property_tree/ptree.hpp>

#include "support/PropertyListText.h"
#include "support/Test.h"

namespace Norvik::Common {
namespace {

using boost::property_tree::ptree;
using namespace Tests;

/// Children in order: "name=value", "name{children}".
std::string TextOf(const ptree& tree) {
  std::string text;
  for (const auto& [name, node] : tree) {
    text += (text.empty() ? "" : ";") + name;
    text += node.empty() ? "=" + node.data() : "{" + TextOf(node) + "}";
  }
  return text;
}

std::string Parsed(const std::string& xml, const std::string& path = "plist.array") {
  ptree tree;
  MacXMLToJSONParser(xml, tree).Parse(path);
  return TextOf(tree);
}

std::string ParsedValue(const std::string& value) {
  const std::string inList = Parsed(PropertyList("<array>" + value + "</array>"));
  EXPECT_EQ(inList.substr(0, 5), "array") << value;
  EXPECT_EQ(Parsed(PropertyList(value), "plist"), "plist" + inList.substr(5)) << value;
  return inList.substr(5);
}

TEST(MacXMLToJSONParser, TurnsAPropertyListIntoATree) {
  const Json tables = DataOf("common/apple/property-lists.json");
  ExpectRows(tables["values"], ParsedValue);
  ExpectRows(
      tables["first element at the path"], +[](const std::string& xml) { return Parsed(xml); });
}

TEST(MacXMLToJSONParser, LeavesTheTreeAloneForAnyOtherText) {
  const LogCapture log;
  EXPECT_EQ(Parsed(""), "");
  EXPECT_TRUE(log.Lines().empty());
  std::size_t refused = 0;
  for (const Json& row : DataOf("common/apple/odd-lists.json")) {
    const bool isList = row["isList"];
    EXPECT_EQ(!Parsed(row["bytes"].get<Bytes>()).empty(), isList) << row["name"];
    refused += !isList;
    EXPECT_EQ(log.Texts(5).size(), refused) << row["name"];
  }
  const auto whole =
      PropertyListOf(R"([{"_dataType": "SPUSBDataType", "_items": [{"_name": "USB€"}]}])");
  const auto end = whole.rfind('>');
  for (std::size_t length = 0; length < end; ++length) {
    ASSERT_EQ(Parsed(whole.substr(0, length)), "") << length;
  }
}

TEST(MacXMLToJSONParser, FindsTheFirstNodeOfANameAtAnyDepth) {
  ptree tree;
  MacXMLToJSONParser(PropertyListOf(R"({"a": {"b": {"x": "deep"}}, "x": "late"})"), tree)
      .Parse("plist");
  const auto found = MacXMLToJSONParser::SearchNode(tree, "x");
  ASSERT_TRUE(found);
  EXPECT_EQ(found->data(), "deep");
  EXPECT_FALSE(MacXMLToJSONParser::SearchNode(tree, "deep"));
}

}  // namespace
}  // namespace Norvik::Common
