#include <boost/algorithm/string/case_conv.hpp>
#include <boost/algorithm/string/replace.hpp>
#include <regex>

#include "common/action/ActionCodes.h"
#include "common/rest/PendingTasks.h"
#include "host/server/AnswerBody.h"
#include "host/server/AnswerText.h"
#include "host/server/DeliverySetup.h"

namespace {

using namespace Norvik::Tests;
using Examples = std::vector<Json>;

/// The examples of a section of docs/server-protocol.md, in their order: its blocks of JSON and the
/// objects in its lines.
Examples ExamplesOf(const std::string& section) {
  const std::string page = ContentOf(NORVIK_SOURCE_DIR "/docs/server-protocol.md");
  const auto begin = page.find("\n## " + section + "\n");
  if (begin == std::string::npos) throw std::runtime_error("no section " + section);
  const std::string text = page.substr(begin, page.find("\n## ", begin + 1) - begin);
  static const std::regex EXAMPLE("```json\n([^`]*)\n```|`(\\{[^`]*\\})`");
  Examples examples;
  for (std::sregex_iterator found(text.begin(), text.end(), EXAMPLE), end; found != end; ++found) {
    examples.push_back(Json::parse((*found)[(*found)[1].matched ? 1 : 2].str()));
  }
  return examples;
}

/// The keys and the kinds of values at any depth; all elements of a list must agree with its first.
Json FormOf(const Json& value) {
  Json form = value.type_name();
  if (value.is_object()) {
    form = Json::object();
    for (const auto& [key, part] : value.items()) form[key] = FormOf(part);
  } else if (value.is_array() && !value.empty()) {
    form = Json::array({FormOf(value[0])});
  }
  return form;
}

Json FormOfText(const std::string& json) { return FormOf(Json::parse(json)); }
/// The same for JSON whose keys have no order.
PlainJson PlainFormOf(const Json& value) { return PlainJson::parse(FormOf(value).dump()); }
PlainJson PlainFormOf(const Norvik::Common::IRestRequest& request) {
  return PlainFormOf(Json::parse(static_cast<json::JSON>(request).strUgly()));
}

/// An example with other values for the keys that it has.
std::string With(Json example, const Json& values) {
  for (const auto& [key, value] : values.items()) {
    if (example.contains(key)) example[key] = value;
  }
  return example.dump();
}

template <class Response>
Response Read(const Json& body) {
  Response response;
  response.Assign(ParseAnswerBody(body.dump()));
  return response;
}

TEST(ProtocolPage, ShowsAnEnrolmentAsItIs) {
  const Examples examples = ExamplesOf("Enrolment");
  ASSERT_THAT(examples, SizeIs(3));
  for (const Json& answer : {examples[1], examples[2]}) {
    DeliverySetup setup;
    setup.options.enrolmentSecret = "s";
    setup.options.hardware = {"serial", "model", "uuid"};
    setup.Restart();
    const std::string identifier = setup.options.identity->Get().identifier;
    const std::string token = "0123456789abcdef";
    setup.server.Set([&](State& state) {
      if (answer.contains("token")) state.token = token;
      state.enrolmentBody = With(answer, {{"identifier", identifier}, {"token", token}});
    });
    setup.Report("a");
    EXPECT_EQ(setup.Round(), -1) << answer;
    setup.server.Set([&](State& state) {
      EXPECT_EQ(FormOf(examples[0]), FormOfText(state.enrolment));
      EXPECT_EQ(state.agents.begin()->second == "Bearer " + token, answer.contains("token"));
    });
  }
}

TEST(ProtocolPage, ShowsMessagesAsTheyAre) {
  const Examples examples = ExamplesOf("Messages");
  ASSERT_THAT(examples, SizeIs(4));
  ProcessMessageRequest request;
  request.agentIdentifier = "ID";
  EXPECT_EQ(PlainFormOf(examples[0]), PlainFormOf(request));
  Json answer = examples[1];
  answer["result"] = 7;
  EXPECT_EQ(Read<ProcessMessageResponse>(answer).result, 7u);
  EXPECT_EQ(Read<ProcessMessageResponse>(answer).message, answer["message"].get<std::string>());
  const auto survey = Read<SurveyResponseInfo>(examples[2]);
  EXPECT_TRUE(survey.available);
  EXPECT_EQ(survey.url, "https://...");
  EXPECT_FALSE(Read<SurveyResponseInfo>(examples[3]).available);
}

/// Calls the function with each plain value inside.
void ForEachValue(Json& json, const std::function<void(Json&)>& function) {
  if (json.is_primitive()) return function(json);
  for (Json& part : json) ForEachValue(part, function);
}

TEST(ProtocolPage, ShowsTasksOfWhichTheAgentReadsEachValue) {
  Examples examples = ExamplesOf("Tasks");
  ASSERT_THAT(examples, SizeIs(2));
  EXPECT_EQ(PlainFormOf(examples[0]), PlainFormOf(PendingTasksRequest()));
  Json& tasks = examples[1];
  const auto response = Read<PendingTasksResponse>(tasks);
  EXPECT_THAT(response.refused, SizeIs(0));
  ASSERT_THAT(response.schedules, SizeIs(tasks["tasks"].size()));
  for (const Json& task : tasks["tasks"]) {
    std::string name = "ACTION_" + boost::to_upper_copy(task["name"].get<std::string>());
    boost::replace_all(name, " ", "_");
    const auto hasCode = [&](const ActionName& known) { return known.code == task["code"]; };
    const auto* const known =
        std::find_if(std::begin(ACTION_NAMES), std::end(ACTION_NAMES), hasCode);
    ASSERT_NE(known, std::end(ACTION_NAMES));
    EXPECT_EQ(known->name, name);
  }
  ForEachValue(tasks, [&](Json& value) {
    const Json good = std::exchange(value, Json{{"no", "plain value"}});
    EXPECT_THAT(Read<PendingTasksResponse>(tasks).refused, SizeIs(1)) << good << " is not read";
    value = good;
  });
}

TEST(ProtocolPage, ShowsStatesAnswersAndFilesAndTheirAcknowledgementsAsTheyAre) {
  DeliverySetup setup;
  setup.Report("a");
  const WaitingStatus status = setup.queue->First(1).at(0);
  const auto acknowledge = [&](const char* resource, const Json& example, const Json& values) {
    setup.Break(
        {{"fault", {{"status", 200}, {"resource", resource}, {"body", With(example, values)}}}});
    EXPECT_EQ(setup.Round(), -1) << example;
  };
  const Examples states = ExamplesOf("States of tasks");
  ASSERT_THAT(states, SizeIs(2));
  EXPECT_EQ(FormOf(states[0]), FormOfText("{\"statuses\":[" + status.json + "]}"));
  acknowledge("statuses", states[1], {{"acknowledged", status.id}});
  EXPECT_TRUE(setup.queue->IsEmpty());

  const Examples answers = ExamplesOf("Answers of tasks");
  ASSERT_THAT(answers, SizeIs(2));
  TaskAnswer answer = AnswerOf("");
  answer.result.response.text.reset();
  for (const char* cell : {"title", "cell"}) {
    answer.result.response.table.AddRow({std::string(cell)});
  }
  answer.result.response.table.HasTitles(true);
  setup.answers->Add(answer);
  const WaitingAnswer waiting = setup.answers->First().value();
  EXPECT_EQ(FormOf(answers[0]), FormOfText(ContentOf(waiting.file)));
  acknowledge("answers", answers[1], {{"acknowledged", waiting.id}});
  EXPECT_TRUE(setup.answers->IsEmpty());

  const Examples files = ExamplesOf("Files");
  ASSERT_THAT(files, SizeIs(1));
  setup.PutSealed("m.jsonkob", "");
  const std::string sum = "a43b86b6d9b869548dd5080c53d58a5c897c3ea611fe000a0e71e6af6b385ec4";
  acknowledge("files", files[0], {{"sha256", sum}, {"size", SEAL.size()}});
  EXPECT_THAT(setup.Waiting(), SizeIs(0));
}

}  // namespace
