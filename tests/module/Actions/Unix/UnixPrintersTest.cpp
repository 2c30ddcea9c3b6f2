#include "module/Actions/Unix/UnixPrinters.h"

#include "module/Actions/Mac/AdministeredMachine.h"
#include "support/PrintServer.h"

namespace Norvik::KOB {
namespace {

using namespace Tests;

using UnixPrintersTest = AdministeredMachine;

TEST_F(UnixPrintersTest, AQueueIsAWholeLine) {
  for (const char* list : {"b:", "a:\nb:\n", "\nb\nc", " \nb:\n"}) {
    EXPECT_TRUE(UnixPrinters().CheckPrinter(list, "b")) << list;
  }
  for (const char* list : {"", "ab:\n", "b::\n", " b:\n", "bc:\n"}) {
    EXPECT_FALSE(UnixPrinters().CheckPrinter(list, "b")) << list;
  }
}

TEST_F(UnixPrintersTest, AQueueOfARealServerIsRemovedUnlessTheServerRefuses) {
  // The recorded machine finds its tools in bin/.
  fs::create_directory(folder / "bin");
  fs::create_symlink("/usr/sbin/lpadmin", folder / "bin/lpadmin");
  fs::create_symlink("/usr/bin/lpstat", folder / "bin/lpstat");
  {
    const PrintServer server(true);
    ASSERT_TRUE(server.IsRunning());
    server.AddQueue("Laser_2");
    server.AddQueue("Laser");
    EXPECT_EQ(Request(1030, {{"name", "Laser"}}), (Lines{"status 7", "status 2", "once 1036 +60"}));
    EXPECT_EQ(server.Queues(), "device for Laser_2: /dev/null\n");
  }
  const PrintServer server(false);
  ASSERT_TRUE(server.IsRunning());
  server.AddQueue("Laser");
  EXPECT_EQ(Request(1030, {{"name", "Laser"}}),
            (Lines{"status 7", "status 8 Failed to remove printer: Laser",
                   "error The Laser printer could not be removed."}));
  EXPECT_EQ(server.Queues(), "device for Laser: /dev/null\n");
}

}  // namespace
}  // namespace Norvik::KOB
