#include "common/rest/RestMessages.h"

#include <gtest/gtest.h>

#include <boost/property_tree/json_parser.hpp>
#include <sstream>

namespace {

using namespace Norvik::Common;

boost::property_tree::ptree Parse(const std::string& text) {
  std::istringstream stream(text);
  boost::property_tree::ptree tree;
  read_json(stream, tree);
  return tree;
}

TEST(RestMessages, WriteTheRequestAsAnObject) {
  ProcessMessageRequest request;
  request.code = 1003;
  request.subcode = 1;
  EXPECT_EQ(request.operator json::JSON().strUgly(), R"({"code":1003,"message":"","subcode":1})");
  request.agentIdentifier = "id";
  request.message = wxString::FromUTF8("ü\"");
  EXPECT_EQ(request.operator json::JSON().strUgly(),
            R"({"agentIdentifier":"id","code":1003,"message":"ü\"","subcode":1})");
}

TEST(RestMessages, ReadTheResponseWithDefaultsForWhatIsMissing) {
  ProcessMessageResponse response;
  response.Assign(Parse(R"({"result": 5, "message": "{\"available\":true}"})"));
  EXPECT_EQ(response.result, 5u);
  EXPECT_EQ(response.message, "{\"available\":true}");
  response.Assign(Parse("{}"));
  EXPECT_EQ(response.result, 0u);
  EXPECT_TRUE(response.message.empty());
  EXPECT_THROW(response.Assign(Parse(R"({"result": "much"})")), boost::property_tree::ptree_error);
}

TEST(RestMessages, TellASurveyApart) {
  const SurveyResponseInfo survey(Parse(R"({"available": true, "url": "https://s.example/1"})"));
  EXPECT_TRUE(survey.available);
  EXPECT_EQ(survey.url, "https://s.example/1");
  const SurveyResponseInfo again(Parse(static_cast<json::JSON>(survey).strUgly()));
  EXPECT_TRUE(again == survey);
  EXPECT_TRUE(SurveyResponseInfo(Parse("{}")) != survey);
  EXPECT_THROW(SurveyResponseInfo(Parse(R"({"available": "perhaps"})")),
               boost::property_tree::ptree_error);
}

}  // namespace
