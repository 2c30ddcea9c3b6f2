#include "receiver/work/Worker.h"

#include <boost/filesystem/operations.hpp>
#include <chrono>
#include <ctime>
#include <system_error>

#include "common/files/Archive.h"
#include "common/files/FileSealer.h"
#include "common/log/Logger.h"
#include "receiver/protocol/Credentials.h"
#include "receiver/protocol/Tasks.h"
#include "receiver/work/DocumentUpdate.h"

namespace Norvik::Receiver {

namespace {

constexpr std::size_t LARGEST_DOCUMENT = std::size_t{1} << 30;
/// Another process may have stored a file.
constexpr unsigned int POLL_MILLISECONDS = 500;
constexpr unsigned int FAILURE_MILLISECONDS = 5000;

/// A file that is removed at the end of the scope.
struct TemporaryFile {
  explicit TemporaryFile(std::string thePath) : path(std::move(thePath)) {}
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile() {
    boost::system::error_code error;
    boost::filesystem::remove(path, error);
  }
  const std::string path;
};

/// What a killed worker has left. Another one may be using newer files.
void RemoveLeftFiles(const std::string& folder) {
  constexpr std::time_t OLD = 600;
  for (const auto& entry : boost::filesystem::directory_iterator(folder)) {
    boost::system::error_code error;
    const std::time_t written = boost::filesystem::last_write_time(entry.path(), error);
    if (!error && written + OLD < std::time(nullptr)) {
      boost::filesystem::remove(entry.path(), error);
    }
  }
}

/// Asks once for a full document after a gap.
void AskForFullDocument(Session& session, const std::string& agent, const Inventory& inventory) {
  session.Run("UPDATE documents SET complete=0 WHERE agent=? AND kind=?", {agent, inventory.kind});
  if (HasTask(session, agent, inventory.fullTask)) return;
  NewTask task;
  task.code = inventory.fullTask;
  task.name = "Full document after a gap";
  AddTask(session, agent, task);
}

}  // namespace

Worker::Worker(const WorkerOptions& options)
    : options_(options),
      unpacked_(options.data + "/work"),
      files_(options.data),
      keys_({options.keys}) {
  if (keys_.Keys().empty()) throw std::runtime_error("No private key: " + keys_.Tried());
  const bool isShared = Dialect(options.database).IsShared();
  if (!isShared) lock_.emplace(options.data, "work");
  boost::filesystem::create_directories(unpacked_);
  boost::filesystem::permissions(unpacked_, boost::filesystem::owner_all);
  RemoveLeftFiles(unpacked_);
  for (unsigned int number = 0; number < (isShared ? options.threads : 1); ++number) {
    threads_.emplace_back([this] { Run(); });
  }
}

Worker::~Worker() {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    stops_ = true;
  }
  wake_.notify_all();
  for (std::thread& thread : threads_) thread.join();
}

void Worker::Wake() {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    ++arrivals_;
  }
  wake_.notify_one();
}

bool Worker::WaitOrStop(unsigned int milliseconds) {
  std::unique_lock<std::mutex> lock(mutex_);
  const auto arrivals = arrivals_;
  wake_.wait_for(lock, std::chrono::milliseconds(milliseconds),
                 [&] { return stops_ || arrivals_ != arrivals; });
  return !stops_;
}

void Worker::Run() {
  std::unique_ptr<Session> session;
  bool goesOn = true;
  while (goesOn) {
    try {
      if (!session) session = std::make_unique<Session>(options_.database);
      goesOn = WaitOrStop(TakeNext(*session) ? 0 : POLL_MILLISECONDS);
    } catch (const std::exception& failure) {
      NORVIK_ERROR(std::string("A document could not be stored: ") + failure.what());
      session.reset();
      goesOn = WaitOrStop(FAILURE_MILLISECONDS);
    }
  }
}

bool Worker::TakeNext(Session& session) {
  // Where rows can be locked, the agent's is, from the choice to the end. On SQLite nobody else
  // works.
  std::optional<Transaction> transaction;
  if (session.Kind().IsShared()) transaction.emplace(session);
  const auto agents = session.Rows<1>(
      "SELECT a.agent FROM uploads u JOIN agents a ON a.agent=u.agent WHERE u.state='new' "
      "ORDER BY u.number LIMIT 1 {lock agent}");
  if (agents.empty()) return false;
  const std::string& agent = agents.front()[0];
  // Again, since another worker may have ended with what the first statement has seen.
  const auto uploads = session.Rows<2>(
      "SELECT {number as text}, sha256 FROM uploads WHERE agent=? AND state='new' ORDER BY number "
      "LIMIT 1",
      {agent});
  if (uploads.empty()) return true;
  const auto& [number, sha256] = uploads.front();

  std::string state = "aside", reason, text;
  bool isGap = false;
  std::optional<DocumentUpdate> update;
  try {
    text = TextIn(agent, sha256);
    update.emplace(session, agent, text);
    state = "applied";
  } catch (const Unusable& unusable) {
    reason = unusable.what();
    isGap = dynamic_cast<const Gap*>(&unusable) != nullptr;
  }
  if (!transaction) transaction.emplace(session);
  if (update) update->Store(session);
  if (isGap) AskForFullDocument(session, agent, InventoryOf(text));
  session.Run("UPDATE uploads SET state=?, reason=? WHERE agent=? AND number=?",
              {state, reason, agent, number});
  transaction->Commit();
  if (update && !options_.keepFiles) files_.Remove(agent, sha256);
  if (!update) NORVIK_WARNING("A file of " + agent + " was put aside: " + reason);
  return true;
}

std::string Worker::TextIn(const std::string& agent, const std::string& sha256) const {
  const TemporaryFile archive(unpacked_ + "/" + RandomText(8) + ".zip");
  try {
    Common::OpenSealedFile(files_.PathOf(agent, sha256), archive.path, keys_);
    return Common::ReadArchive(archive.path, LARGEST_DOCUMENT);
  } catch (const std::system_error& error) {
    // Anything but a missing file may be better later.
    if (error.code() != std::errc::no_such_file_or_directory) throw;
    throw Unusable(error.what());
  } catch (const std::runtime_error& error) {
    std::string reason = error.what();
    const auto at = reason.find(archive.path);
    if (at != std::string::npos) reason.replace(at, archive.path.size(), "in the file");
    throw Unusable(reason);
  }
}

}  // namespace Norvik::Receiver
