#include "module/Actions/Mac/RemoteAdministration.h"

#include <gmock/gmock.h>

#include "module/ModuleUnderTest.h"

namespace Norvik::KOB {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using namespace Tests;

constexpr unsigned int REFUSED[] = {1019, 1020, 1015, 1016, 1017, 1018, 1021, 1022, 1039};
constexpr unsigned int MISSING[] = {1011, 1013, 1012, 1002, 1003, 1000, 1006, 1007,
                                    1010, 1045, 1024, 1023, 1026, 1025, 1032, 1029,
                                    1030, 1031, 1001, 1062, 1070, 1073};
constexpr unsigned int WITH_TASK[] = {1013, 1001, 1032, 1030, 1031, 1062};

class RemoteAdministrationTest : public testing::Test {
 protected:
  FakeHost host;
  ModuleUnderTest module{host};
};

TEST_F(RemoteAdministrationTest, OperationsThatTheSystemLacksAreRefused) {
  for (const unsigned int code : REFUSED) {
    SCOPED_TRACE(code);
    EXPECT_EQ(module.Run(code).text, std::string("Not supported operation"));
    EXPECT_EQ(module.Run(code, WithText("path", "x")).text, std::string("Not supported operation"));
  }
  EXPECT_THAT(host.communications->TakeStatuses(), IsEmpty());
}

TEST_F(RemoteAdministrationTest, OperationsThatAreMissingSaySo) {
  for (const unsigned int code : MISSING) {
    SCOPED_TRACE(code);
    const auto response = module.Run(code);
    ASSERT_TRUE(response.text);
    EXPECT_THAT(*response.text, HasSubstr(" is not available in this build"));
    EXPECT_FALSE(response.success);
    EXPECT_TRUE(host.log.Holds(3, *response.text));
    const bool tells =
        std::find(std::begin(WITH_TASK), std::end(WITH_TASK), code) != std::end(WITH_TASK);
    EXPECT_EQ(host.communications->TakeStatuses().size(), tells ? 1U : 0U);
  }
  EXPECT_EQ(std::size(REFUSED) + std::size(MISSING) + 2, 33U);
}

TEST_F(RemoteAdministrationTest, PausingAServiceIsRefusedInItsOwnWords) {
  const auto name = WithText("name", "com.acme.daemon");
  EXPECT_EQ(module.Run(1008, name).text,
            std::string("Pause service com.acme.daemon is an operation unsupported on macOS"));
  EXPECT_EQ(module.Run(1009, name).text,
            std::string("Continue service com.acme.daemon is an operation unsupported on macOS"));
  EXPECT_EQ(module.Run(1008).text, std::string("Invalid Parameter name"));
  EXPECT_EQ(module.Run(1009).text, std::string("Invalid Parameter name"));
}

TEST(RemoteAdministration, RegistersEveryOperationForItself) {
  FakeHost host;
  Common::HandlerMap handlers;
  RemoteAdministration administration(host.Dependencies(), {}, handlers);
  EXPECT_EQ(handlers.size(), 33U);
  Common::ActionParameters none;
  EXPECT_EQ(administration.CreateRegistryValue(none).text, NOT_SUPPORTED_OPERATION);
  EXPECT_EQ(handlers.at(1011)(none).text,
            std::string("The operation ListProcesses is not available in this build"));
}

}  // namespace
}  // namespace Norvik::KOB
