#include "module/Actions/Mac/RemoteAdministration.h"

#include <gmock/gmock.h>

#include "module/ModuleUnderTest.h"

namespace Norvik::KOB {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using namespace Tests;

constexpr unsigned int REFUSED[] = {1019, 1020, 1015, 1016, 1017, 1018, 1021, 1022, 1039};
constexpr unsigned int MISSING[] = {1011, 1012, 1002, 1003, 1000, 1006, 1007, 1010,
                                    1045, 1024, 1023, 1026, 1025, 1029, 1070, 1073};
constexpr unsigned int MISSING_WITH_TASK[] = {1013, 1001, 1032, 1030, 1031, 1062};

class RemoteAdministrationTest : public testing::Test {
 protected:
  void ExpectMissing(unsigned int code, std::size_t statuses) {
    SCOPED_TRACE(code);
    const auto response = module.Run(code);
    ASSERT_TRUE(response.text);
    EXPECT_THAT(*response.text, HasSubstr(" is not available in this build"));
    EXPECT_FALSE(response.success);
    EXPECT_TRUE(host.log.Holds(3, *response.text));
    EXPECT_EQ(host.communications->TakeStatuses().size(), statuses);
  }

  FakeHost host;
  ModuleUnderTest module{host};
};

TEST_F(RemoteAdministrationTest, OperationsThatTheSystemLacksAreRefused) {
  for (const unsigned int code : REFUSED) {
    EXPECT_EQ(module.Run(code).text, std::string("Not supported operation")) << code;
    EXPECT_EQ(module.Run(code, WithText("path", "x")).text, std::string("Not supported operation"))
        << code;
  }
  EXPECT_THAT(host.communications->TakeStatuses(), IsEmpty());
}

TEST_F(RemoteAdministrationTest, OperationsThatAreMissingSaySo) {
  for (const unsigned int code : MISSING) ExpectMissing(code, 0);
  for (const unsigned int code : MISSING_WITH_TASK) ExpectMissing(code, 1);
}

TEST_F(RemoteAdministrationTest, PausingAServiceIsRefusedInItsOwnWords) {
  for (const auto& [code, verb] : {std::pair(1008U, "Pause"), std::pair(1009U, "Continue")}) {
    EXPECT_EQ(module.Run(code, WithText("name", "daemon")).text,
              verb + std::string(" service daemon is an operation unsupported on macOS"));
    EXPECT_EQ(module.Run(code).text, std::string("Invalid Parameter name"));
  }
}

}  // namespace
}  // namespace Norvik::KOB
