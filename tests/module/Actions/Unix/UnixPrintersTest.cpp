#include "module/Actions/Unix/UnixPrinters.h"

#include "module/Actions/Mac/AdministeredMachine.h"

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

TEST_F(UnixPrintersTest, APrinterIsRemovedAndAnInventoryFollows) {
  AddFile("queues", "device for Laser_2: ipp://192.0.2.9/q\ndevice for stuck: usb://x\n");
  AddTool("bin/lpstat", "[ \"$1\" = -v ] && cat \"$M/queues\"");
  AddRecordedTool("bin/lpadmin", "[ \"$2\" = stuck ] || sed -i \"/for $2:/d\" \"$M/queues\"");
  Follow("printers.txt");
  EXPECT_TRUE(
      host.log.Holds(4, "Printer removed successfully, starting KOB incremental inventory"));
}

}  // namespace
}  // namespace Norvik::KOB
