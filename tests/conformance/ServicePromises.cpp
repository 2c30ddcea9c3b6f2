// Promises of the services other than the action system, and of using all of them from several
// threads.
#include <algorithm>
#include <atomic>
#include <functional>
#include <mutex>
#include <thread>

#include "common/database/DataBase.h"
#include "common/identification/SmBios.h"
#include "common/ipc/ICommunicationIPC.h"
#include "common/text/OperatingSystemType.h"
#include "conformance/Promises.h"

namespace Norvik::Conformance {

namespace {

using namespace Common;
using std::chrono::seconds;
using std::chrono::steady_clock;

constexpr unsigned int CODE = 60'003;
constexpr seconds AT_ONCE(1);
constexpr char KEY[] = "CONFORMANCE_";

/// Runs the work on several threads at once. Throws the first exception of one.
void OnThreads(int count, const std::function<void(int)>& work) {
  std::vector<std::thread> threads;
  std::mutex mutex;
  std::exception_ptr failure;
  for (int thread = 0; thread < count; ++thread) {
    threads.emplace_back([&, thread] {
      try {
        work(thread);
      } catch (...) {
        const std::lock_guard<std::mutex> lock(mutex);
        if (!failure) failure = std::current_exception();
      }
    });
  }
  for (auto& thread : threads) thread.join();
  if (failure) std::rethrow_exception(failure);
}

TaskResponseInfo Status() {
  TaskResponseInfo status;
  status.taskName = "task of the check";
  status.taskCreationDate = "2024-01-01T00:00:00Z";
  status.taskTimeStamp = "1";
  status.requestId = "request-1";
  return status;
}

void ServicesOnThreads(Subject& subject) {
  constexpr int THREADS = 8;
  constexpr int ROUNDS = 25;
  const auto runs = Runs::Make();
  const std::string identifier = subject.Identification()->GetAgentIdentifier();
  std::atomic<int> others{0};
  OnThreads(THREADS, [&](int) {
    for (int round = 0; round < ROUNDS; ++round) {
      subject.Actions()->QueueAction(runs->Action());
      subject.Actions()->RunOneShot(CODE, runs->Action(), seconds(0));
      subject.Actions()->RunAction(runs->Action());
      if (subject.Identification()->GetAgentIdentifier() != identifier) ++others;
      subject.Identification()->GetToken();
      subject.Identification()->GetSmBios();
      if (round % 10 == 0) subject.Communications()->ReportTaskStatus(Status());
      subject.Communications()->NewFileOnOutbox();
    }
  });
  constexpr int ALL = THREADS * ROUNDS * 3;
  subject.Within([&] { return runs->Count() >= ALL; });
  Expect(runs->Count() == ALL,
         "of " + std::to_string(ALL) + " actions ran " + std::to_string(runs->Count()));
  Expect(others == 0, "the identifier was another one on another thread");
}

void ServicesBeforeTheModule(Subject& subject) {
  const auto runs = Runs::Make();
  subject.duringMake = [&] {
    subject.Actions()->RunAction(runs->Action());
    subject.Actions()->QueueAction(runs->Action());
    subject.Actions()->RunOneShot(CODE, runs->Action(), seconds(0));
    Expect(!subject.Identification()->GetAgentIdentifier().empty(), "there is no identifier");
    subject.Identification()->GetToken();
    Expect(subject.Identification()->GetSmBios().lock() != nullptr, "there is no SMBIOS object");
    subject.Identification()->GetFirstInventoryInfo();
    subject.Communications()->NewFileOnOutbox();
    subject.DataBase()->GetTable("DATA", 0, 0, 0);
    Expect(subject.Data().SetString(KEY, "early"), "the database cannot be written");
  };
  subject.Restart();
  subject.Within([&] { return runs->Count() == 3; });
  Expect(runs->Count() == 3, "of 3 actions that were started while the module was made ran " +
                                 std::to_string(runs->Count()));
}

/// The fastest of a few calls counts: a busy machine may delay each of them.
void ExpectAtOnce(const std::function<void()>& call) {
  std::chrono::duration<double> fastest = steady_clock::duration::max();
  for (int i = 0; i < 3; ++i) {
    const auto begun = steady_clock::now();
    call();
    fastest = std::min<std::chrono::duration<double>>(fastest, steady_clock::now() - begun);
  }
  Expect(fastest < AT_ONCE,
         "the fastest call took " + std::to_string(fastest.count()) + " seconds");
}

void StatusesReturnAtOnce(Subject& subject) {
  ExpectAtOnce([&] { subject.Communications()->ReportTaskStatus(Status()); });
  ExpectAtOnce([&] { subject.Communications()->ReportTaskStatuses({Status(), Status()}); });
}

void NewFilesReturnAtOnce(Subject& subject) {
  ExpectAtOnce([&] { subject.Communications()->NewFileOnOutbox(); });
}

void NoAnswerIsFalse(Subject& subject) {
  constexpr std::uint32_t BEFORE = 4711;
  subject.CloseServer();
  ProcessMessageRequest request;
  request.message = "question";
  ProcessMessageResponse response;
  response.result = BEFORE;
  response.message = "before";
  const bool answered = subject.Communications()->ProcessMessage(request, response);
  Expect(!answered, "it returns true");
  Expect(response.result == BEFORE && response.message == "before", "the response is changed");
}

void IpcRefusesOthers(Subject& subject) {
  const auto ipc = std::dynamic_pointer_cast<ICommunicationIPC>(subject.Communications());
  if (!ipc) throw NotOffered();
  unsigned long long session = 4711;
  for (const auto& known : ipc->GetSessions()) session = std::max(session, known.first + 1);
  Expect(!ipc->Send({0, CODE, "key", "value"}, session), "Send returns true");
}

void IdentifierIsStable(Subject& subject) {
  const std::string identifier = subject.Identification()->GetAgentIdentifier();
  Expect(!identifier.empty(), "it is empty");
  for (const bool restart : {false, true}) {
    if (restart) subject.Restart();
    const std::string again = subject.Identification()->GetAgentIdentifier();
    Expect(again == identifier, "it was " + identifier + " and is " + again);
  }
}

void TokenIsStable(Subject& subject) {
  const std::string token = subject.Identification()->GetToken();
  subject.Restart();
  Expect(token.empty() || subject.Identification()->GetToken() == token,
         "it is another one after the restart");
}

void FactsAreGatheredAgain(Subject& subject) {
  wxString name;
  for (int i = 0; i < 3; ++i) {
    const FirstInventoryInfo facts = subject.Identification()->GetFirstInventoryInfo();
    const std::string type = facts.operatingSystemType.utf8_string();
    Expect(type.empty() || OperatingSystemType::FromString(type) != OperatingSystemType::UNKNOWN,
           "the type of the operating system is \"" + type + "\"");
    if (i == 0) name = facts.hostName;
    Expect(facts.hostName == name, "the host name is another one");
  }
}

void SmBiosLocks(Subject& subject) {
  const auto smBios = subject.Identification()->GetSmBios();
  subject.Wait(seconds(1));
  Expect(smBios.lock() != nullptr && subject.Identification()->GetSmBios().lock() != nullptr,
         "the object does not exist");
}

void TablesExist(Subject& subject) {
  for (const char* table : {"DATA", "KOB_DATA", "KOB_REGISTERED_SOFTWARE", "KOB_NETWORK_DRIVES",
                            "RUD_STATE", "RUD2_CURRENT_STATUS", "RUD2_FILE_PATH",
                            "RUD2_FILE_EXTENSION", "RUD2_FILE_COMPANY", "RUD2_LAST_INVENTORY"}) {
    Expect(V2::DataBase::ExistTable(table), std::string("there is no table ") + table);
  }
  Expect(subject.Data().SetString(KEY, "value"), "a value cannot be written");
  const auto rows = subject.DataBase()->GetTable("DATA", 0, 0, 0);
  Expect(rows && !rows->rows.empty(), "IDataBase does not read what V2::DataBase has written");
}

void DataSurvives(Subject& subject) {
  Expect(subject.Data().SetString(KEY, "kept"), "a value cannot be written");
  subject.Restart();
  Expect(subject.Data().GetOptionalString(KEY) == std::string("kept"),
         "a value that was written is lost");
}

void DataBaseOnThreads(Subject& subject) {
  constexpr int THREADS = 4;
  constexpr int ROUNDS = 10;
  const auto key = [](int thread, int round) {
    return KEY + std::to_string(thread) + "_" + std::to_string(round);
  };
  std::atomic<int> failures{0};
  OnThreads(THREADS, [&](int thread) {
    for (int round = 0; round < ROUNDS; ++round) {
      AgentData data = subject.Data();
      if (!data.SetInt64(key(thread, round), round)) ++failures;
      const auto read = data.GetInt64(key(thread, round));
      if (!read || *read != round || !subject.DataBase()->GetTable("DATA", 0, 0, 0)) ++failures;
    }
  });
  Expect(failures == 0, std::to_string(failures) + " of 40 values were not written or read");
}

}  // namespace

std::vector<Promise> ServicePromises() {
  return {
      {"services-early", "The services can be used while the module is made.",
       ServicesBeforeTheModule},
      {"services-parallel", "Several threads can use the services at once.", ServicesOnThreads},
      {"status-at-once",
       "Reports of task statuses return at once, also if the server does not answer.",
       StatusesReturnAtOnce},
      {"outbox-at-once",
       "The report of a new file returns at once, also if the server does not answer.",
       NewFilesReturnAtOnce},
      {"no-answer-is-false",
       "`ProcessMessage` without an answer returns false and leaves the response unchanged.",
       NoAnswerIsFalse},
      {"ipc-refuses",
       "If the host offers IPC, `Send` to a session that is not connected returns "
       "false.",
       IpcRefusesOthers},
      {"identifier-stable", "The identifier is not empty, and the same after a restart.",
       IdentifierIsStable},
      {"token-stable", "A token is the same after a restart.", TokenIsStable},
      {"facts-again", "The facts of the machine can be asked for again and again.",
       FactsAreGatheredAgain},
      {"smbios-locks", "There is an `SmBios` object as long as the module lives.", SmBiosLocks},
      {"database-tables", "The database has the tables that the module needs.", TablesExist},
      {"database-survives", "What is written to the database is there after a restart.",
       DataSurvives},
      {"database-parallel", "Several threads can use the database at once.", DataBaseOnThreads},
  };
}

}  // namespace Norvik::Conformance
