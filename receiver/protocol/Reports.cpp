#include "receiver/protocol/Protocol.h"
#include "receiver/protocol/Tasks.h"

namespace Norvik::Receiver {

namespace {

constexpr std::size_t MAX_IDENTIFIER = 200;
constexpr std::size_t MAX_STATUSES = 1000;

/// A status or an answer.
struct Report {
  std::string id;
  const char* kind;
  std::string task;
  bool endsTask;
  long long status;  ///< of the task, if it ends
  std::string body;
};

Report StatusOf(const Json& body) {
  if (!body.is_object()) throw Refusal{400, "A status is no JSON object."};
  Report report{RequiredText(body, "id", MAX_IDENTIFIER),
                "status",
                TextOf(body, "requestId", MAX_IDENTIFIER),
                false,
                NumberOf(body, "status"),
                body.dump()};
  report.endsTask = report.status == 2 || report.status == 3 || report.status == 8;
  return report;
}

Report AnswerOf(const Json& body) {
  const long long code = NumberOf(body, "code");
  const auto success = body.find("success");
  if (success == body.end() || !success->is_boolean()) {
    throw Refusal{400, "The key success of the body is neither true nor false."};
  }
  return {RequiredText(body, "id", MAX_IDENTIFIER),
          "answer",
          RequiredText(body, "taskIdentifier", MAX_IDENTIFIER),
          EndOf(code) != TaskEnd::Status,
          success->get<bool>() ? 2 : 8,
          body.dump()};
}

/// One that is known is dropped. A report of an unknown task is kept too: a refusal would hold up
/// all that follow.
void Keep(Session& session, const std::string& agent, const Report& report) {
  const bool isNew =
      session.Run(
          "INSERT INTO reports(agent, id, kind, task, body, time) VALUES(?,?,?,?,?,?) "
          "ON CONFLICT DO NOTHING",
          {agent, report.id, report.kind, report.task, report.body, Now()}) == 1;
  if (!isNew || !report.endsTask) return;
  session.Run(
      "UPDATE tasks SET ended=?, status=? WHERE agent=? AND task=? AND period=0 AND ended=0",
      {Now(), report.status, agent, report.task});
}

}  // namespace

Response Protocol::KeepStatuses(const std::string& agent, const Request&, const Json& body) const {
  const auto list = body.find("statuses");
  if (list == body.end() || !list->is_array()) throw Refusal{400, "There is no list of statuses."};
  if (list->size() > MAX_STATUSES) throw Refusal{413, "There are too many statuses."};
  std::vector<Report> reports;
  for (const Json& status : *list) reports.push_back(StatusOf(status));
  if (!reports.empty()) {
    pool_.With([&](Session& session) {
      Transaction transaction(session);
      for (const Report& report : reports) Keep(session, agent, report);
      transaction.Commit();
    });
  }
  return JsonResponse({{"acknowledged", reports.empty() ? "" : reports.back().id}});
}

Response Protocol::KeepAnswer(const std::string& agent, const Request&, const Json& body) const {
  const Report report = AnswerOf(body);
  pool_.With([&](Session& session) {
    Transaction transaction(session);
    Keep(session, agent, report);
    transaction.Commit();
  });
  return JsonResponse({{"acknowledged", report.id}});
}

}  // namespace Norvik::Receiver
