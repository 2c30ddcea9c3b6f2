#include <benchmark/benchmark.h>

#include <list>
#include <string>

#include "module/Inventory/MonitorsSection.h"

// Decodes the EDID blocks of 10,000 displays, one per line as `ioreg` prints them.

namespace {

constexpr int displayCount = 10000;

/// An EDID block with a name, a serial number and the limits of the display.
std::string Edid(int number) {
  std::string serial;
  for (const char digit : std::to_string(10000000 + number)) serial += std::string("3") + digit;
  return "00ffffffffffff001a8f3412785634120c1f0104b53c2278226fb1a7554c9e250c5054000000010101010101"
         "01010101010101010101565e00a0a0a029503020350055502100001a000000fc00466a6f72642033320a2020"
         "2020000000ff00" +
         serial + "0a20202020000000fd00384c1e5311010a2020202020200000\n";
}

void DecodeEdidLines(benchmark::State& state) {
  std::string lines;
  for (int i = 0; i < displayCount; ++i) lines += Edid(i);
  for (auto _ : state) {
    std::list<Norvik::KOB::MonitorInfo> monitors;
    Norvik::KOB::ReadEdidLines(lines, monitors);
    if (monitors.back().name != "Fjord 32\n    ") state.SkipWithError("decoded wrongly");
  }
  state.SetItemsProcessed(state.iterations() * displayCount);
}
BENCHMARK(DecodeEdidLines)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
