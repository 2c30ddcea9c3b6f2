#include "common/rest/RestMessages.h"

#include <gtest/gtest.h>

#include "support/Json.h"

namespace {

using namespace Norvik::Common;
using tests::ParseJson;

TEST(RestMessages, LeaveOutAnIdentifierThatIsUnknownAndRefuseAValueOfAnotherType) {
  ProcessMessageRequest request;
  request.code = 1003;
  request.message = wxString::FromUTF8("ü\"");
  EXPECT_EQ(request.operator json::JSON().strUgly(),
            R"({"code":1003,"message":"ü\"","subcode":0})");
  ProcessMessageResponse response;
  EXPECT_THROW(response.Assign(ParseJson(R"({"result": "much"})")),
               boost::property_tree::ptree_error);
}

}  // namespace
