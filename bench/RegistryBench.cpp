#include <benchmark/benchmark.h>
#include <malloc.h>

#include <boost/optional/optional.hpp>
#include <boost/property_tree/ptree.hpp>
#include <string>

#include "common/mac/MacXMLToJSONParser.h"
#include "module/Inventory/ServicesSection.h"
#include "platform/compat/Registry.h"
#include "support/MacRecording.h"

// The two readers of an I/O registry, over one of 8 MB as a machine with much attached prints it,
// and the daemons of a machine that has a thousand. "memory" is what the tree takes, in sizes of
// the text.

namespace {

using namespace Norvik::Tests;
using Norvik::Platform::Registry;

constexpr std::size_t recordingSize = 8u << 20;
constexpr int daemonCount = 1000;
constexpr int width = 3;

std::string Device(int number, const std::vector<std::string>& children) {
  const std::string digits = std::to_string(number);
  return Entry("ExampleDevice" + std::to_string(number % 300),
               {{"IORegistryEntryName", Text("device" + digits)},
                {"IORegistryEntryID", "<integer>42949" + digits + "</integer>\n"},
                {"IOObjectRetainCount", "<integer>7</integer>\n"},
                {"CFBundleIdentifier", Text("com.example.driver.Device" + digits)},
                {"IOProviderClass", Text("IOPCIDevice")},
                {"IOProbeScore", "<integer>1000</integer>\n"},
                {"reg", "<data>\n\tAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA\n\t</data>\n"},
                {"IOPowerManagement", Dictionary({{"CurrentPowerState", "<integer>2</integer>\n"},
                                                  {"MaxPowerState", "<integer>2</integer>\n"},
                                                  {"ChildProxyPowerState", "<true/>\n"}})}},
               children);
}

/// A tree whose last entry is the one that is looked for.
std::string Recording() {
  const std::size_t deviceSize = Device(1000, {}).size();
  std::vector<std::string> level(recordingSize / deviceSize * (width - 1) / width);
  int number = 0;
  for (std::string& device : level) device = Device(number++, {});
  level.push_back(Entry("WantedDevice", {{"wanted-key", Text("found")}}));
  while (level.size() > 1) {
    std::vector<std::string> above;
    for (std::size_t at = 0; at < level.size(); at += width) {
      const auto begin = level.begin() + static_cast<std::ptrdiff_t>(at);
      const auto count = std::min<std::size_t>(width, level.size() - at);
      above.push_back(Device(number++, {begin, begin + static_cast<std::ptrdiff_t>(count)}));
    }
    level = std::move(above);
  }
  return PropertyList(level.front());
}

std::size_t UsedMemory() {
  const auto info = ::mallinfo2();
  return info.uordblks + info.hblkhd;
}

/// Runs `read`, which keeps its tree until it has called its argument, and shows time and memory.
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
                  PropertyList(Dictionary({{"Label", Text(label)},
                                           {"ProgramArguments", Array({Text("/usr/libexec/x")})},
                                           {"RunAtLoad", "<true/>\n"}})));
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
