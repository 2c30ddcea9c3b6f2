#include "common/rest/RemoteTaskDownloader.h"

#include "common/rest/PendingTasks.h"
#include "support/FakeHost.h"
#include "support/Test.h"

namespace {

using namespace Norvik::Common;
using namespace Norvik::Tests;

std::string TextOf(const ActionPropertyValue& value) {
  std::ostringstream stream;
  const auto write = [&](const auto& held) {
    using Value = std::decay_t<decltype(held)>;
    if constexpr (std::is_same_v<Value, wxString>) {
      stream << held.utf8_string();
    } else if constexpr (std::is_same_v<Value, ActionTimePoint>) {
      stream << system_clock::to_time_t(held);
    } else if constexpr (!std::is_same_v<Value, AgentConfigurationInfo>) {
      stream << held;
    }
  };
  boost::apply_visitor(write, value);
  return stream.str();
}

/// The tasks, each with its parameters as name=TYPE:value, and then the statuses that the server
/// got.
TextList Fetched(const Json& answer) {
  const auto server = std::make_shared<FakeCommunications>();
  if (answer.is_object()) server->answer = answer.dump();
  ActionParameters base;
  base.Set("a", wxString("base"));
  base.Set("base", wxString("x"));
  const auto factory = [](unsigned int code, const ActionParameters&) {
    ModuleAction action;
    if (code < 2000) action.name = "known";
    return action;
  };
  TextList texts;
  RemoteTaskDownloader downloader(server, PRODUCT_KOB, factory, "agent", &base);
  for (const Schedule& task : downloader.GetSchedules()) {
    std::ostringstream text;
    text << task.identifier << ' ' << task.code << ' ' << task.when.periodSeconds << ' '
         << task.when.next;
    for (const auto& [name, value] : task.parameters.Values()) {
      text << ' ' << name << '=' << value.which() << ':' << TextOf(value);
    }
    texts.push_back(text.str());
  }
  for (const auto& status : server->statuses) {
    texts.push_back(status.requestId + " " + std::to_string(status.status) + " " + status.message);
  }
  return texts;
}

TEST(RemoteTaskDownloader, GivesTheGoodTasksAndReportsTheOthers) {
  ExpectRows(DataOf("common/rest/remote-tasks.json"), Fetched);
  const auto taskOf = [](std::size_t length) {
    return Json{{"identifier", std::string(length, 'x')}, {"code", 1}};
  };
  EXPECT_EQ(Fetched({{"tasks", {taskOf(200), taskOf(201)}}}).size(), 1u);
  const LogCapture log;
  EXPECT_EQ(
      Fetched({{"tasks", std::vector<Json>(
                             30, {{"identifier", "x\n"}, {"code", 3000}, {"requestId", "r"}})}})
          .size(),
      30u);
  ASSERT_THAT(log.Texts(3), SizeIs(11));
  EXPECT_THAT(log.Texts(3)[9], HasSubstr("task \"x\" is left out: no action has the code 3000"));
  EXPECT_THAT(log.Texts(3)[10], HasSubstr("20 more tasks"));
  EXPECT_TRUE(RemoteTaskDownloader(nullptr, PRODUCT_KOB, {}, "", nullptr).GetSchedules().empty());
}

}  // namespace
