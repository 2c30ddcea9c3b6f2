#include <benchmark/benchmark.h>
#include <malloc.h>

#include <boost/optional/optional.hpp>
#include <boost/property_tree/ptree.hpp>
#include <string>

#include "common/apple/MacXMLToJSONParser.h"
#include "module/Inventory/ServicesSection.h"
#include "platform/compat/Registry.h"
#include "support/MacRecording.h"

// The two readers of an I/O registry, for the 8 MB of a machine with many devices, and the
// collector of daemons for a machine with a thousand. "memory" is the size of the tree divided by
// the size of the text.

namespace {

using namespace Norvik::Tests;
using Norvik::Platform::Registry;

constexpr std::size_t recordingSize = 8u << 20;
constexpr int daemonCount = 1000;
constexpr int width = 3;

Json Device(int number, std::vector<Json> children) {
  const std::string digits = std::to_string(number);
  Json device = {
      "ExampleDevice" + std::to_string(number % 300),
      {{"IORegistryEntryName", "device" + digits},
       {"IORegistryEntryID", 4294900000 + number},
       {"IOObjectRetainCount", 7},
       {"CFBundleIdentifier", "com.example.driver.Device" + digits},
       {"IOProviderClass", "IOPCIDevice"},
       {"IOProbeScore", 1000},
       {"reg", {{"$data", "\n\tAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA\n\t"}}},
       {"IOPowerManagement",
        {{"CurrentPowerState", 2}, {"MaxPowerState", 2}, {"ChildProxyPowerState", true}}}}};
  for (Json& child : children) device.push_back(std::move(child));
  return device;
}

std::string TextOf(const Json& entry) { return PropertyListOf(RegistryEntry(entry)); }

/// A tree whose last entry is the one that the benchmark searches for.
std::string Recording() {
  const std::size_t deviceSize = TextOf(Device(1000, {})).size() - PropertyList("").size();
  std::vector<Json> level(recordingSize / deviceSize * (width - 1) / width);
  int number = 0;
  for (Json& device : level) device = Device(number++, {});
  level.push_back({"WantedDevice", {{"wanted-key", "found"}}});
  while (level.size() > 1) {
    std::vector<Json> above;
    for (std::size_t at = 0; at < level.size(); at += width) {
      const auto begin = level.begin() + static_cast<std::ptrdiff_t>(at);
      const auto count = std::min<std::size_t>(width, level.size() - at);
      above.push_back(Device(number++, {begin, begin + static_cast<std::ptrdiff_t>(count)}));
    }
    level = std::move(above);
  }
  return TextOf(level.front());
}

std::size_t UsedMemory() {
  const auto info = ::mallinfo2();
  return info.uordblks + info.hblkhd;
}

/// Runs `read` and reports time and memory. `read` must keep its tree until it has called its
/// argument.
template <class Read>
void Measure(benchmark::State& state, const Read& read) {
  const std::string text = Recording();
  std::size_t used = 0;
  for (auto _ : state) {
    const std::size_t before = UsedMemory();
    if (!read(text, [&] { used = UsedMemory() - before; })) state.SkipWithError("not found");
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
  state.counters["memory"] = static_cast<double>(used) / static_cast<double>(text.size());
}

void BM_RegistryRecording(benchmark::State& state) {
  Measure(state, [](const std::string& text, const auto& measure) {
    const Registry registry(text);
    measure();
    return registry.OfClass("WantedDevice").size() == 1;
  });
}
BENCHMARK(BM_RegistryRecording)->Unit(benchmark::kMillisecond);

void BM_RegistryReport(benchmark::State& state) {
  Measure(state, [](const std::string& text, const auto& measure) {
    boost::property_tree::ptree tree;
    Norvik::Common::MacXMLToJSONParser(text, tree).Parse("plist");
    measure();
    return bool(Norvik::Common::MacXMLToJSONParser::SearchNode(tree, "wanted-key"));
  });
}
BENCHMARK(BM_RegistryReport)->Unit(benchmark::kMillisecond);

void BM_ThousandDaemons(benchmark::State& state) {
  MacRecording recording;
  for (int i = 0; i < daemonCount; ++i) {
    const std::string label = "com.example.daemon" + std::to_string(i);
    recording.Add("root/Library/LaunchDaemons/" + label + ".plist",
                  PropertyListOf({{"Label", label},
                                  {"ProgramArguments", Json::array({"/usr/libexec/x"})},
                                  {"RunAtLoad", true}}));
  }
  recording.PutInForce();
  for (auto _ : state) {
    std::list<Norvik::KOB::ServiceInfo> services;
    Norvik::KOB::ServicesSection().GetInfo(services);
    if (services.size() != daemonCount) state.SkipWithError("daemons are missing");
  }
}
BENCHMARK(BM_ThousandDaemons)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
