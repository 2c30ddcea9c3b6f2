#include "host/run/StopSignals.h"

#include <gtest/gtest.h>

#include <csignal>

namespace {

TEST(StopSignals, APauseLosesNoSignal) {
  Norvik::Host::StopSignals signals;
  int hangUps = 0;
  int pauses = 0;
  const int ending = signals.Wait([&] { ++hangUps; }, std::chrono::milliseconds(1),
                                  [&] { std::raise(++pauses < 3 ? SIGHUP : SIGTERM); });
  EXPECT_EQ(ending, SIGTERM);
  EXPECT_EQ(hangUps, 2);
}

}  // namespace
