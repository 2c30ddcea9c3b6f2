#include <gmock/gmock.h>

#include "module/ModuleUnderTest.h"
#include "support/Cases.h"

namespace Norvik::KOB {
namespace {

using namespace Tests;
using Texts = std::vector<std::string>;

/// A machine whose state stands in a row; what the row leaves out is such that a survey is shown.
struct SurveyCase {
  explicit SurveyCase(const Json& row = Json::object()) { Set(row); }
  void Lose(const std::string& service) {
    if (service == "dependencies") host.dependencies.reset();
    if (service == "identification") host.identification.reset();
    if (service == "communications") host.communications.reset();
  }
  void Set(const Json& row) {
    const auto flags = row.value("survey", Json{false, false, true});
    auto& survey = host.dependencies->configuration.survey;
    survey.reset();
    if (flags.is_array()) survey = Common::SurveyInfo{flags[0], flags[1], flags[2]};
    Common::AgentData data(host.database, "DATA");
    data.Remove("OPERATING_SYSTEM_TYPE");
    const auto type = row.value("type", Json("macOS"));
    if (!type.is_null()) data.SetString("OPERATING_SYSTEM_TYPE", type.get<std::string>());
    auto message = row.value("message", R"({"available": true, "url": "u"})");
    if (row.contains("nested")) message = std::string(row["nested"], '[');
    host.communications->answer =
        row.value("answer", Json{{"result", 0}, {"message", message}}.dump());
    host.communications->accepts = row.value("accepts", true);
  }
  void Begin(const Json& session = 7) {
    Common::ActionParameters parameters;
    if (session.is_number()) parameters.Set("SessionEventData", 7ULL);
    if (session.is_string()) parameters.Set("SessionEventData", wxString("7"));
    module.Run(1069, parameters);
  }

  FakeHost host;
  ModuleUnderTest module{host};
};

/// A wanted text may end with "*": whatever follows.
bool Fits(const std::string& text, const std::string& wanted) {
  return wanted.back() == '*' ? text.rfind(wanted.substr(0, wanted.size() - 1), 0) == 0
                              : text == wanted;
}

TEST(SurveyCompletionActions, EveryBranchEndsWithItsLineItsRetryOrItsMessage) {
  for (const Json& row : DataOf("module/Actions/SurveyCompletionActions.json")) {
    SCOPED_TRACE(row["name"]);
    SurveyCase survey(row);
    survey.Lose(row.value("gone", ""));
    const auto before = survey.host.log.Lines().size();
    const auto begin = [&] { survey.Begin(row.value("session", Json(7))); };
    EXPECT_EQ(MessageOf<boost::bad_get>(begin).empty(), !row.contains("raises"));
    Texts log;
    const auto lines = survey.host.log.Lines();
    for (auto line = lines.begin() + static_cast<long>(before); line != lines.end(); ++line) {
      if (line->level < 7) log.push_back(std::to_string(line->level) + " " + line->text);
    }
    const Texts wanted = row.value("log", Texts());
    EXPECT_TRUE(std::equal(log.begin(), log.end(), wanted.begin(), wanted.end(), Fits))
        << testing::PrintToString(log);
    EXPECT_EQ(survey.host.actions->Texts(), row.value("started", Texts()));
    Texts sent;
    const auto* communications = survey.host.communications.get();
    if (!communications) continue;
    for (const auto& [session, message] : communications->sent) {
      sent.push_back(std::to_string(session) + " " + std::to_string(message.kind) + " " +
                     std::to_string(message.code) + " " + message.key + "=" + message.value);
    }
    EXPECT_EQ(sent, row.value("sent", Texts()));
    if (communications->requests.empty()) continue;
    EXPECT_EQ(communications->requests.front(),
              R"({"agentIdentifier":"agent-1","code":1003,"message":"","subcode":1})");
  }
}

TEST(SurveyCompletionActions, EachCauseIsRetriedTenTimesUntilASurveyIsShown) {
  const std::pair<const char*, Json> causes[] = {
      {"Operation System Type is not ready. Max attempts reached", {{"type", nullptr}}},
      {"Communication error. Max attempts reached", {{"answer", ""}}},
      {"Unable to send IPC message. Max attempts reached", {{"accepts", false}}}};
  SurveyCase survey;
  const auto begin = [&](const Json& state, int times) {
    survey.Set(state);
    survey.host.actions->Forget();
    for (int i = 0; i < times; ++i) survey.Begin();
    return survey.host.actions->All().size();
  };
  for (int round = 0; round < 2; ++round) {
    for (const auto& [text, state] : causes) {
      EXPECT_EQ(begin(state, 12), 10U) << text;
      auto retry = survey.host.actions->Last(1069).action.parameters;
      EXPECT_EQ(retry.Get<unsigned long long>("SessionEventData"), 7U);
      EXPECT_EQ(survey.host.log.Texts(2).back(), text);
      EXPECT_EQ(begin(state, 1), 0U) << text;
    }
    EXPECT_EQ(begin(Json::object(), 1), 0U);
  }
}

}  // namespace
}  // namespace Norvik::KOB
