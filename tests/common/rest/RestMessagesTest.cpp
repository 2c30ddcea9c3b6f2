#include "common/rest/RestMessages.h"

#include <gtest/gtest.h>

#include "support/Json.h"

namespace {

using namespace Norvik::Common;
using tests::ParseJson;

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
  response.Assign(ParseJson(R"({"result": 5, "message": "{\"available\":true}"})"));
  EXPECT_EQ(response.result, 5u);
  EXPECT_EQ(response.message, "{\"available\":true}");
  response.Assign(ParseJson("{}"));
  EXPECT_EQ(response.result, 0u);
  EXPECT_TRUE(response.message.empty());
  EXPECT_THROW(response.Assign(ParseJson(R"({"result": "much"})")),
               boost::property_tree::ptree_error);
}

TEST(RestMessages, TellASurveyApart) {
  const SurveyResponseInfo survey(ParseJson(R"({"available": true, "url": "https://s.example"})"));
  EXPECT_TRUE(survey.available);
  EXPECT_EQ(survey.url, "https://s.example");
  EXPECT_TRUE(SurveyResponseInfo(ParseJson(json::JSON(survey).strUgly())) == survey);
  EXPECT_TRUE(SurveyResponseInfo(ParseJson("{}")) != survey);
  EXPECT_THROW(SurveyResponseInfo(ParseJson(R"({"available": "perhaps"})")),
               boost::property_tree::ptree_error);
}

}  // namespace
