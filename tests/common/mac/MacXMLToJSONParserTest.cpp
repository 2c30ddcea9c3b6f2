#include "common/mac/MacXMLToJSONParser.h"

#include <gtest/gtest.h>

#include <boost/property_tree/ptree.hpp>

#include "support/LogCapture.h"
#include "support/PropertyListText.h"

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

TEST(MacXMLToJSONParser, TurnsAPropertyListIntoATree) {
  const std::tuple<const char*, const char*, const char*> rows[] = {
      {"dictionary", "<dict><key>a</key><string>x</string><key>b</key><integer>-7</integer></dict>",
       "{a=x;b=-7}"},
      {"nested array", "<array><string>x</string><array/></array>", "{=x;=}"},
      {"data as it stands", "<dict><key>d</key><data>\n\tAAEC\n\tAwQ=\n\t</data></dict>",
       "{d=\n\tAAEC\n\tAwQ=\n\t}"},
      {"truth", "<dict><key>t</key><true/><key>f</key><false/></dict>", "{t=true;f=false}"},
      {"escapes", "<dict><key>a&amp;b</key><string>&lt;&#65;<![CDATA[<]]>\xC3\xBC</string></dict>",
       "{a&b=<A<\xC3\xBC}"},
      {"comment", "<dict><!-- <key>no</key> --><key>a</key> <string>x<!-- y -->z</string></dict>",
       "{a=xz}"},
      {"dot in a key", "<dict><key>a.b</key><string>x</string></dict>", "{a.b=x}"},
      {"control characters", "<string>C02\x01\x1FX</string>", "=C02  X"},
      {"key without value", "<dict><key>a</key><key>b</key><string>x</string><key>c</key></dict>",
       "{b=x}"},
      {"value without key", "<dict><string>x</string></dict>", "{=x}"},
      {"elements in a key", "<dict><key>a<key>b</key><dict/></key><string>x</string></dict>",
       "{a=x}"},
      {"key in an array", "<array><key>a</key></array>", "{=a}"},
      {"empty", "<dict/>", "="},
  };
  for (const auto& [name, value, tree] : rows) {
    EXPECT_EQ(Parsed(PropertyList(Array({value}))), "array{" + std::string(tree) + "}") << name;
    EXPECT_EQ(Parsed(PropertyList(value), "plist"), "plist{" + std::string(tree) + "}") << name;
  }
}

TEST(MacXMLToJSONParser, TakesTheFirstElementAtThePath) {
  const std::pair<const char*, const char*> rows[] = {
      {"<plist><array><true/></array><array><false/></array></plist>", "array{=true}"},
      {"<plist><dict><array/></dict><array><true/></array></plist>", "array{=true}"},
      {"<plist><plist><array><true/></array></plist></plist>", ""},
      {"<array><true/></array>", ""},
      {"<plist><dict/></plist>", ""},
      {"<plist><array/></plist>", "array="},
  };
  for (const auto& [xml, tree] : rows) EXPECT_EQ(Parsed(xml), tree) << xml;
}

TEST(MacXMLToJSONParser, LeavesTheTreeAloneForAnyOtherText) {
  const LogCapture log;
  EXPECT_EQ(Parsed(""), "");
  EXPECT_TRUE(log.Lines().empty());
  const auto times = [](int count, const std::string& text) {
    std::string all;
    for (int i = 0; i < count; ++i) all += text;
    return all;
  };
  const auto nested = [&](int depth) {
    return "<plist>" + times(depth, "<array>") + times(depth, "</array>") + "</plist>";
  };
  EXPECT_NE(Parsed(nested(511)), "");
  const std::pair<const char*, std::string> rows[] = {
      {"no XML", "Graphics/Displays:\n\n    Fjord Graphics:\n"},
      {"binary", std::string("bplist00\xD1\x00\x01\xFF", 12)},
      {"no UTF-8", "<plist><array><string>\xFF</string></array></plist>"},
      {"something behind it", PropertyList(Array({})) + "x"},
      {"crossed", "<plist><array></plist></array>"},
      {"too deep", nested(512)},
      {"millions of elements", "<plist><array>" + times(1000000, "<a/>") + "</array></plist>"},
      {"a long mark-up", "<plist><array " + std::string(70000, ' ') + "/></plist>"},
      {"entities",
       "<!DOCTYPE plist [<!ENTITY a \"x\">]><plist><array><string>&a;</string></array>"
       "</plist>"},
  };
  for (const auto& [name, xml] : rows) EXPECT_EQ(Parsed(xml), "") << name;
  EXPECT_EQ(log.Texts(5).size(), std::size(rows));
  const auto whole = Report("SPUSBDataType", {Dictionary({{"_name", Text("USB\xE2\x82\xAC")}})});
  const auto end = whole.rfind('>');
  for (std::size_t length = 0; length < end; ++length) {
    ASSERT_EQ(Parsed(whole.substr(0, length)), "") << length;
  }
}

TEST(MacXMLToJSONParser, FindsTheFirstNodeOfANameAtAnyDepth) {
  ptree tree;
  MacXMLToJSONParser(
      PropertyList(Dictionary(
          {{"a", Dictionary({{"b", Dictionary({{"x", Text("deep")}})}})}, {"x", Text("late")}})),
      tree)
      .Parse("plist");
  const auto found = MacXMLToJSONParser::SearchNode(tree, "x");
  ASSERT_TRUE(found);
  EXPECT_EQ(found->data(), "deep");
  EXPECT_FALSE(MacXMLToJSONParser::SearchNode(tree, "deep"));
}

}  // namespace
}  // namespace Norvik::Common
