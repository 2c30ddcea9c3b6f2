#include "receiver/protocol/Tasks.h"

#include <algorithm>
#include <initializer_list>

#include "receiver/protocol/Credentials.h"
#include "receiver/protocol/Protocol.h"

namespace Norvik::Receiver {

namespace {

/// An answer may have 1 MiB.
constexpr std::size_t MAX_TASKS = 1000000;
constexpr long long PRODUCT = 1;
/// A task whose end nobody reports is given out for so long, since an answer with it may get lost.
constexpr long long UNREPORTED_SECONDS = 60;

using Codes = std::initializer_list<long long>;
// As the tables of docs/server-protocol.md say. 1002 gives no answer for a folder without files.
const Codes ANSWERED = {1003, 1006, 1008, 1009, 1011, 1015, 1016, 1017,
                        1018, 1019, 1020, 1021, 1022, 1024, 1029, 1039};
const Codes UNREPORTED = {1000, 1002, 1007, 1010, 1012,  1023,  1045,  1046,  1065,  1066,  1068,
                          1069, 1070, 1072, 1073, 32001, 32004, 32011, 32012, 32022, 32023, 32027};
const Codes DESTRUCTIVE = {1000, 1001, 1010, 1012, 1013, 1023, 1025,
                           1026, 1030, 1031, 1062, 1070, 1073};

bool Has(const Codes& codes, long long code) {
  return std::find(codes.begin(), codes.end(), code) != codes.end();
}

void EndUnreported(Session& session, const std::string& agent, const std::string& task) {
  session.Run("UPDATE tasks SET ended=? WHERE agent=? AND task=?", {Now(), agent, task});
}

}  // namespace

TaskEnd EndOf(long long code) {
  if (Has(ANSWERED, code)) return TaskEnd::Answer;
  return Has(UNREPORTED, code) ? TaskEnd::None : TaskEnd::Status;
}

bool IsDestructive(long long code) { return Has(DESTRUCTIVE, code); }

std::string AddTask(Session& session, const std::string& agent, const NewTask& task) {
  std::string identifier = RandomText(8);
  session.Run(
      "INSERT INTO tasks(agent, task, code, name, parameters, period, next, created, given, ended, "
      "status) VALUES(?,?,?,?,?,?,?,?,0,0,0)",
      {agent, identifier, task.code, task.name, task.parameters, task.period, task.next, Now()});
  return identifier;
}

bool HasTask(Session& session, const std::string& agent, long long code) {
  return !session
              .Rows<1>("SELECT task FROM tasks WHERE agent=? AND ended=0 AND code=? LIMIT 1",
                       {agent, code})
              .empty();
}

Response Protocol::GiveTasks(const std::string& agent, const Request&, const Json& body) const {
  const bool isOurs = NumberOf(body, "product") == PRODUCT;
  return pool_.With([&](Session& session) {
    Json tasks = Json::array();
    std::size_t size = 0;
    const auto rows = session.Rows<7>(
        "SELECT task, code, name, parameters, period, next, given FROM tasks "
        "WHERE agent=? AND ended=0 ORDER BY created, task",
        {agent});
    for (const auto& [task, code, name, parameters, period, next, given] : rows) {
      const bool isUnreported = EndOf(std::stoll(code)) == TaskEnd::None && period == "0";
      if (!isOurs) break;
      if (isUnreported && given != "0" && std::stoll(given) + UNREPORTED_SECONDS < Now()) {
        EndUnreported(session, agent, task);
        continue;
      }
      Json entry = {
          {"identifier", task},
          {"requestId", task},
          {"name", name},
          {"code", std::stoll(code)},
          {"schedule", {{"periodSeconds", std::stoll(period)}, {"next", std::stoll(next)}}},
          {"parameters", Json::parse(parameters)}};
      size += entry.dump().size() + 1;
      if (size > MAX_TASKS) break;
      tasks.push_back(std::move(entry));
      if (given == "0") {
        session.Run("UPDATE tasks SET given=? WHERE agent=? AND task=?", {Now(), agent, task});
      }
    }
    return JsonResponse({{"tasks", std::move(tasks)}});
  });
}

}  // namespace Norvik::Receiver
