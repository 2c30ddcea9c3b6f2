#include <benchmark/benchmark.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>

#include "module/Entities/InventoryKOBInfo.h"
#include "module/Entities/InventoryReader.h"
#include "module/IncrementalInventory/Entities/DeletedRecord.h"
#include "module/IncrementalInventory/KobIncrementalInventory.h"

// One large inventory, like that of a developer's workstation, rendered and read back. Both writers
// render the same document, so their bytes per second can be compared.

namespace {

using Norvik::KOB::InventoryKOBInfo;

constexpr int softwareCount = 8192;
constexpr int serviceCount = 2000;

Norvik::Common::SoftwareRegisteredInfo Software(int number) {
  const std::string digits = std::to_string(number);
  Norvik::Common::SoftwareRegisteredInfo software;
  software.name = "Package for signal analysis " + digits;
  software.installDate = 1700000000 + number;
  software.version = "4." + digits + ".2";
  software.publisher = "Maker of Software, S\xC3\xA0rl";
  software.sizeBytes = 1048576u * static_cast<unsigned>(number);
  software.productCode = "net.example.package" + digits;
  software.location = "/Applications/Signal Analysis " + digits + ".app";
  software.architecture = "x86_64";
  software.description = "Reads, filters and plots \"signals\" of up to " + digits + " channels.";
  software.softwareKey = "net.example.package" + digits;
  software.signedBy = "Developer ID Application";
  return software;
}

Norvik::KOB::ServiceInfo Service(int number) {
  const wxString digits = wxString() << number;
  Norvik::KOB::ServiceInfo service;
  service.name = "net.example.service" + digits;
  service.displayName = "Service " + digits;
  service.command = "/usr/local/libexec/service" + digits + " --foreground --quiet";
  service.startupMode = "Automatic";
  service.state = "Running";
  service.description = "Keeps watch over the folder of number " + digits;
  return service;
}

InventoryKOBInfo LargeInventory() {
  InventoryKOBInfo inventory;
  for (int i = 0; i < softwareCount; ++i) inventory.software.push_back(Software(i));
  for (int i = 0; i < serviceCount; ++i) inventory.services.push_back(Service(i));
  return inventory;
}

void CountBytes(benchmark::State& state, std::size_t bytes) {
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes));
}

void Render(benchmark::State& state) {
  const json::JSON document = LargeInventory();
  std::size_t bytes = 0;
  for (auto _ : state) {
    const std::string text = document.strUgly();
    bytes = text.size();
    benchmark::DoNotOptimize(text.data());
  }
  CountBytes(state, bytes);
}
BENCHMARK(Render)->Unit(benchmark::kMillisecond);

void RenderWithNlohmann(benchmark::State& state) {
  const std::string source = json::JSON(LargeInventory()).strUgly();
  const auto document = nlohmann::json::parse(source);
  if (document.dump() != source) state.SkipWithError("the two writers differ");
  for (auto _ : state) {
    const std::string text = document.dump();
    benchmark::DoNotOptimize(text.data());
  }
  CountBytes(state, source.size());
}
BENCHMARK(RenderWithNlohmann)->Unit(benchmark::kMillisecond);

void BuildAndRender(benchmark::State& state) {
  const InventoryKOBInfo inventory = LargeInventory();
  std::size_t bytes = 0;
  for (auto _ : state) {
    const std::string text = json::JSON(inventory).strUgly();
    bytes = text.size();
    benchmark::DoNotOptimize(text.data());
  }
  CountBytes(state, bytes);
}
BENCHMARK(BuildAndRender)->Unit(benchmark::kMillisecond);

/// Reads the document as an incremental run reads the previous one.
void ReadBack(benchmark::State& state) {
  const std::string text = json::JSON(LargeInventory()).strUgly();
  for (auto _ : state) {
    std::istringstream stream(text);
    const auto inventory = Norvik::KOB::ReadInventory(stream, "previous");
    benchmark::DoNotOptimize(inventory.get());
  }
  CountBytes(state, text.size());
}
BENCHMARK(ReadBack)->Unit(benchmark::kMillisecond);

/// The worst case of the comparison: every record is found at the far end of the list.
void CompareReversed(benchmark::State& state) {
  using namespace Norvik::KOB;
  const InventoryKOBInfo previous = LargeInventory();
  InventoryKOBInfo current = previous;
  std::reverse(current.software.begin(), current.software.end());
  for (std::size_t i = 0; i < current.software.size(); i += 100)
    current.software[i].version = "new";
  for (auto _ : state) {
    std::vector<Norvik::Common::SoftwareRegisteredInfo> created, updated;
    std::vector<SoftwareDeletedInfo> deleted;
    KobIncrementalInventory::GetItems(created, deleted, updated, previous.software,
                                      current.software);
    if (updated.size() != softwareCount / 100 + 1) state.SkipWithError("wrong comparison");
  }
}
BENCHMARK(CompareReversed)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
