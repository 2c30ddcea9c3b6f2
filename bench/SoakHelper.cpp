#include <atomic>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "common/database/AgentData.h"
#include "host/actions/ActionSystem.h"
#include "host/ipc/IpcUser.h"
#include "module/Entities/NetworkDriveInfo.h"
#include "module/NetworkDrivesHandler/TextArchive.h"
#include "support/LogCapture.h"
#include "support/TestDatabase.h"

// The load of script/soak that no command of the agent creates. Prints one line of figures.

namespace {

using namespace Norvik;
using std::chrono::steady_clock;

constexpr unsigned long long DRIVES_IN_ROUND = 20;

double SecondsSince(steady_clock::time_point start) {
  return std::chrono::duration<double>(steady_clock::now() - start).count();
}

/// Queues one-shot actions from several threads and checks that each of them ran exactly once.
int QueueActions(std::size_t count, std::size_t threads) {
  const Tests::TestDatabase dataBase;
  Host::ActionSystem system{Common::AgentData(dataBase, "DATA")};
  std::vector<std::atomic<int>> runs(count);
  const auto start = steady_clock::now();
  std::vector<std::thread> senders;
  for (std::size_t thread = 0; thread < threads; ++thread) {
    senders.emplace_back([&, thread] {
      for (std::size_t i = thread; i < count; i += threads) {
        Common::ModuleAction action;
        action.handler = [&runs, i](Common::ActionParameters&) {
          ++runs[i];
          return Common::ActionResponse();
        };
        system.RunOneShot(1, std::move(action), std::chrono::seconds(0));
      }
    });
  }
  for (auto& sender : senders) sender.join();
  system.WaitIdle();
  std::size_t once = 0;
  for (const auto& number : runs) once += number == 1;
  std::cout << "{\"queued\": " << count << ", \"ranOnce\": " << once
            << ", \"seconds\": " << SecondsSince(start) << "}" << std::endl;
  return once == count ? 0 : 1;
}

/// Acts as a user's process that sends messages at the given rate: rounds of network drives.
int ReportDrives(const std::string& socket, unsigned long long user, unsigned long long count,
                 unsigned long long perSecond) {
  Host::IpcUser service(socket);
  service.Start([](const Common::IPCMessage&, const std::function<void()>& handled) { handled(); });
  KOB::NetworkDriveInfo drive;
  drive.unit = "Z:";
  drive.server = "files.example.com";
  const auto start = steady_clock::now();
  for (unsigned long long i = 0; i < count; ++i) {
    std::this_thread::sleep_until(start + std::chrono::microseconds(1'000'000 * i / perSecond));
    drive.id = user * 1'000'000 + i;
    drive.path = "/volumes/" + std::to_string(drive.id);
    // No more drives together than one user may have.
    const bool begins = i % DRIVES_IN_ROUND == 0;
    const Common::IPCMessage message =
        begins ? Common::IPCMessage{1, 1066, "truncateNetDrivesTable", "truncateNetDrivesTable"}
               : Common::IPCMessage{1, 32001, "getNetworkDrives", KOB::Serialize(drive)};
    while (!service.Send(message, Host::IpcUser::SERVICE)) {
      if (SecondsSince(start) > 120) throw std::runtime_error("the service takes no messages");
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
  }
  std::cout << "{\"sent\": " << count << ", \"seconds\": " << SecondsSince(start) << "}"
            << std::endl;
  // Waits until the script has counted what arrived.
  std::cin.get();
  return 0;
}

int Run(const std::vector<std::string>& words) {
  const Tests::LogCapture quiet;
  const auto number = [&](std::size_t index) { return std::stoull(words.at(index)); };
  if (words.at(1) == "actions") return QueueActions(number(2), number(3));
  return ReportDrives(words.at(2), number(3), number(4), number(5));
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Run({argv, argv + argc});
  } catch (const std::exception& error) {
    std::cerr << "soak helper: " << error.what() << std::endl;
    return 1;
  }
}
