#include "common/rest/RemoteTaskDownloader.h"

#include <boost/property_tree/json_parser.hpp>
#include <sstream>

#include "common/rest/PendingTasks.h"
#include "support/Cases.h"

namespace {

using namespace Norvik::Common;
using Norvik::Tests::Json;

/// A server that has one answer, or none, and keeps what it is told.
struct OneAnswer : ICommunicationSystem {
  bool ProcessMessage(const IRestRequest&, IRestResponse& response) override {
    if (!answer.is_object()) return false;
    std::istringstream stream(answer.dump());
    boost::property_tree::ptree body;
    boost::property_tree::read_json(stream, body);
    response.Assign(body);
    return true;
  }
  void ReportTaskStatus(const TaskResponseInfo& status) override {
    states.push_back(status.requestId + " " + std::to_string(status.status) + " " + status.message);
  }
  void NewFileOnOutbox() override {}

  Json answer;
  std::vector<std::string> states;
};

struct ToText : boost::static_visitor<void> {
  explicit ToText(std::ostream& target) : stream(target) {}
  void operator()(const wxString& text) const { stream << text.utf8_string(); }
  void operator()(const AgentConfigurationInfo&) const {}
  void operator()(const ActionTimePoint& time) const {
    stream << std::chrono::duration_cast<std::chrono::seconds>(time.time_since_epoch()).count();
  }
  template <class Value>
  void operator()(const Value& value) const {
    stream << value;
  }
  std::ostream& stream;
};

/// The tasks, each with its parameters as name=TYPE:value, and then what the server was told.
std::vector<std::string> Fetched(const Json& answer) {
  const auto server = std::make_shared<OneAnswer>();
  server->answer = answer;
  ActionParameters base;
  base.Set("a", wxString("base"));
  base.Set("base", wxString("x"));
  const auto factory = [](unsigned int code, const ActionParameters&) {
    ModuleAction action;
    if (code < 2000) action.name = "known";
    return action;
  };
  std::vector<std::string> texts;
  RemoteTaskDownloader downloader(server, PRODUCT_KOB, factory, "agent", &base);
  for (const Schedule& task : downloader.GetSchedules()) {
    std::ostringstream text;
    text << task.identifier << ' ' << task.code << ' ' << task.when.periodSeconds << ' '
         << task.when.next;
    for (const auto& [name, value] : task.parameters.Values()) {
      text << ' ' << name << '=' << value.which() << ':';
      boost::apply_visitor(ToText(text), value);
    }
    texts.push_back(text.str());
  }
  texts.insert(texts.end(), server->states.begin(), server->states.end());
  return texts;
}

TEST(RemoteTaskDownloader, GivesTheGoodTasksAndTellsTheServerOfTheOthers) {
  Norvik::Tests::ExpectRows(Norvik::Tests::DataOf("common/rest/remote-tasks.json"), Fetched);
  EXPECT_TRUE(RemoteTaskDownloader(nullptr, PRODUCT_KOB, {}, "", nullptr).GetSchedules().empty());
}

}  // namespace
