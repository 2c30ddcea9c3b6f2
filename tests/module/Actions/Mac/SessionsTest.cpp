#include <sys/utsname.h>
#include <utmp.h>
#include <utmpx.h>

#include <algorithm>
#include <chrono>
#include <future>

#include "module/Actions/Mac/AdministeredMachine.h"
#include "platform/LoginRecords.h"
#include "platform/compat/SentAppleEvents.h"

namespace Norvik::KOB {
namespace {

using namespace Tests;

using RemoteSessionsTest = AdministeredMachine;

std::string Login(short type, int id, const std::string& line, const std::string& user,
                  const std::string& computer) {
  utmpx entry{};
  entry.ut_type = type;
  entry.ut_pid = id;
  std::copy_n(line.begin(), std::min(line.size(), sizeof(entry.ut_line)), entry.ut_line);
  std::copy(user.begin(), user.end(), entry.ut_user);
  std::copy(computer.begin(), computer.end(), entry.ut_host);
  return std::string(reinterpret_cast<const char*>(&entry), sizeof(entry));
}

TEST_F(RemoteSessionsTest, SessionsAreTheEntriesAtATerminal) {
  const std::string fullLine = "pts" + std::string(29, 'x');
  AddFile("utmp", Login(BOOT_TIME, 0, "~", "reboot", "") +
                      Login(USER_PROCESS, 501, "console", "ada", "") +
                      Login(DEAD_PROCESS, 77, "ttys001", "", "") +
                      Login(USER_PROCESS, 9, fullLine, "bob", "192.0.2.7"));
  ::utmpxname((folder / "utmp").c_str());
  utsname machine{};
  ASSERT_EQ(::uname(&machine), 0);
  const std::string names = std::string("|") + machine.sysname + "|" + machine.nodename + "|";
  const Lines expected = {"Id|Status|UserName|DomainName|ClientName|StationName|Type",
                          "501|1|ada|" + names + "console", "77|1||" + names + "ttys001",
                          "9|1|bob|192.0.2.7" + names + fullLine};
  EXPECT_EQ(Ask(1024), expected);
  std::future<Lines> second;
  {
    Platform::LoginRecords other;
    second = std::async(std::launch::async, [&] { return Ask(1024); });
    EXPECT_EQ(second.wait_for(std::chrono::milliseconds(20)), std::future_status::timeout);
    for (int left = 4; left > 0; --left) EXPECT_NE(other.Next(), nullptr) << left;
  }
  EXPECT_EQ(second.get(), expected) << "behind another walk";
  ::utmpxname(_PATH_UTMP);
}

TEST_F(RemoteSessionsTest, PowerAndLogOutAreEventsToTheSystemAndTheClockIsSetInWholeSeconds) {
  Follow("power-refused.txt");
  Platform::SetAppleEventAnswer(0);
  TheWrappedCalls().clockCanBeSet = true;
  Follow("power.txt");
  EXPECT_TRUE(host.log.Holds(5, "The time  to set is: tomorrow"));
  EXPECT_TRUE(host.log.Holds(5, "Hora 1767225600"));
}

}  // namespace
}  // namespace Norvik::KOB
