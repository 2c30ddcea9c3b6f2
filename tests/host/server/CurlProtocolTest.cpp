#include "host/server/CurlLibrary.h"
#include "host/server/CurlProtocol.h"

#include "support/Test.h"

namespace {

using namespace Norvik::Host;

constexpr unsigned int OF_MACOS_12 = 0x074D00;

TEST(CurlProtocol, TheVersionInUseDecidesHowItIsSet) {
  const std::pair<unsigned int, bool> rows[] = {
      {OF_MACOS_12, false}, {0x0754FF, false}, {0x075500, true}, {0x080000, true}};
  for (const auto& [version, takesNames] : rows) {
    EXPECT_EQ(TakesProtocolNames(version), takesNames) << version;
  }
}

TEST(CurlProtocol, BothWaysRefuseTheOtherProtocol) {
  for (const unsigned int version : {OF_MACOS_12, 0x075500u}) {
    for (const char* const scheme : {"http", "https"}) {
      CURL* const handle = Curl().easyInit();
      Curl().easySetOption(handle, CURLOPT_URL, "http://127.0.0.1:1/");
      Curl().easySetOption(handle, CURLOPT_PROXY, "");
      EXPECT_EQ(RestrictProtocol(handle, scheme, version), CURLE_OK);
      EXPECT_EQ(Curl().easyPerform(handle),
                scheme == std::string("http") ? CURLE_COULDNT_CONNECT : CURLE_UNSUPPORTED_PROTOCOL)
          << scheme << version;
      Curl().easyCleanup(handle);
    }
  }
}

}  // namespace
