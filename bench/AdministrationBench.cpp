// Listings of remote administration, run as a request runs them: the files of a large folder, the
// connections in the output of a busy machine's `netstat`, and this machine's processes. The cost
// of `ps` is not included, because it cannot be started here.

#include <benchmark/benchmark.h>

#include <clocale>
#include <memory>
#include <string>

#include "common/log/Logger.h"
#include "module/ActionCodes.h"
#include "module/Actions/Mac/RemoteAdministration.h"
#include "platform/RecordedMachine.h"
#include "support/Files.h"
#include "support/TemporaryFolder.h"

namespace Norvik::Bench {
namespace {

using namespace Tests;

struct SilentLog final : Common::Logger {
  void Log(Level, const std::string&, const char*, int, const char*) override {}
};

class Machine {
 public:
  Machine() {
    std::setlocale(LC_CTYPE, "C.UTF-8");
    Common::Logger::SetInstance(std::make_shared<SilentLog>());
    boost::filesystem::create_directories(folder_ / "root/usr/sbin");
  }

  boost::filesystem::path Root() const { return folder_ / "root"; }
  /// Runs a request and returns the number of rows in its response.
  std::int64_t CountRows(KOB::ActionCodes code, const wxString& path = "") {
    Common::ActionParameters parameters;
    parameters.Set("path", path);
    return static_cast<std::int64_t>(handlers_.at(code)(parameters).table.Rows().size());
  }

 private:
  TemporaryFolder folder_;
  Platform::RecordedMachine recorded_{folder_.Path().string()};
  std::shared_ptr<Common::ModuleDependencies> dependencies_ =
      std::make_shared<Common::ModuleDependencies>();
  Common::HandlerMap handlers_;
  KOB::RemoteAdministration administration_{dependencies_, {}, handlers_};
};

void ListFiles(benchmark::State& state) {
  Machine machine;
  boost::filesystem::create_directories(machine.Root() / "large");
  for (std::int64_t number = 0; number < state.range(0); ++number) {
    WriteFile(machine.Root() / "large" / ("document-" + std::to_string(number) + ".txt"), "");
  }
  for (auto _ : state) {
    if (machine.CountRows(KOB::ACTION_LIST_FILES, "/large") != state.range(0) + 1) {
      state.SkipWithError("not all files are listed");
    }
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(ListFiles)->Arg(1000)->Arg(100000)->Unit(benchmark::kMillisecond);

void ListNetworkConnections(benchmark::State& state) {
  Machine machine;
  std::string text =
      "Active Internet connections (including servers)\n"
      "Proto Recv-Q Send-Q  Local Address          Foreign Address        (state)\n";
  for (std::int64_t number = 0; number < state.range(0); ++number) {
    text += "tcp4       0      0  192.0.2.7." + std::to_string(number % 65536) +
            "        198.51.100.20.443      ESTABLISHED\n";
  }
  WriteFile(machine.Root() / "connections", text);
  const auto tool = machine.Root() / "usr/sbin/netstat";
  WriteFile(tool, "#!/bin/sh\ncat '" + (machine.Root() / "connections").string() + "'\n");
  boost::filesystem::permissions(tool, boost::filesystem::owner_all);
  for (auto _ : state) {
    if (machine.CountRows(KOB::ACTION_LIST_NETWORK_CONNECTIONS) != state.range(0) + 1) {
      state.SkipWithError("not all connections are listed");
    }
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(ListNetworkConnections)->Arg(1000)->Arg(50000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace Norvik::Bench

BENCHMARK_MAIN();
