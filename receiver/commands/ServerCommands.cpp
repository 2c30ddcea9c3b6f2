#include <signal.h>
#include <sys/stat.h>

#include <boost/algorithm/string/predicate.hpp>
#include <boost/filesystem/operations.hpp>
#include <iostream>
#include <memory>

#include "common/files/OpeningKeys.h"
#include "platform/ReplacementFile.h"
#include "receiver/commands/Commands.h"
#include "receiver/commands/ServerLog.h"
#include "receiver/database/Pool.h"
#include "receiver/database/Schema.h"
#include "receiver/files/FolderLock.h"
#include "receiver/http/Server.h"
#include "receiver/protocol/Protocol.h"
#include "receiver/work/Worker.h"

namespace Norvik::Receiver {

namespace {

WorkerOptions WorkerOf(const Place& place, const RunOptions& options) {
  return {place.data, place.Database(), options.keys.empty() ? place.data + "/keys" : options.keys,
          options.workers, options.keepsFiles};
}

/// Before anything is changed.
void CheckKeys(const WorkerOptions& options) {
  const Common::OpeningKeys keys({options.keys});
  if (keys.Keys().empty()) throw std::runtime_error("No private key: " + keys.Tried());
}

void CheckOptions(const RunOptions& options) {
  const ServerOptions& server = options.server;
  if (options.isPlain != server.certificate.empty() ||
      server.certificate.empty() != server.certificateKey.empty()) {
    throw UsageError("run needs --certificate and --certificate-key, or --plain");
  }
  const bool isLoopback = boost::starts_with(server.address, "127.") || server.address == "::1";
  if (options.isPlain && !options.isBehindProxy && !isLoopback) {
    throw UsageError("--plain needs a loopback --address, or --behind-proxy");
  }
}

void PreparePlace(const Place& place) {
  LogToStandardError();
  boost::filesystem::create_directories(place.data);
  boost::filesystem::permissions(place.data, boost::filesystem::owner_all);
  ::umask(S_IRWXG | S_IRWXO);
  Session session(place.Database());
  PrepareSchema(session);
}

}  // namespace

int RunServer(const Place& place, const RunOptions& options) {
  CheckOptions(options);
  if (options.hasWorkers) CheckKeys(WorkerOf(place, options));
  PreparePlace(place);
  const FolderLock lock(place.data, "run");
  const UploadFolder files(place.data);
  files.Prepare();
  Platform::RemoveLeftReplacements(files.Folder());
  std::unique_ptr<Worker> worker;
  if (options.hasWorkers) worker = std::make_unique<Worker>(WorkerOf(place, options));
  Pool pool(place.Database());
  const Protocol protocol(pool, files, [&worker] {
    if (worker) worker->Wake();
  });
  Server server(options.server, [&](const Request& head) { return protocol.Decide(head); });
  std::cout << "norvik-receiver: listening on port " << server.Port() << std::endl;
  server.Run();
  return 0;
}

int RunWorkers(const Place& place, const RunOptions& options) {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGTERM);
  sigaddset(&signals, SIGINT);
  ::pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  CheckKeys(WorkerOf(place, options));
  PreparePlace(place);
  const Worker worker(WorkerOf(place, options));
  std::cout << "norvik-receiver: working" << std::endl;
  int signal = 0;
  ::sigwait(&signals, &signal);
  return 0;
}

}  // namespace Norvik::Receiver
