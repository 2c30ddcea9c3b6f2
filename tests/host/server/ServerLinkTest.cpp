#include "host/server/ServerLink.h"

#include <sys/stat.h>

#include <boost/algorithm/string/replace.hpp>
#include <future>
#include <set>

#include "common/rest/PendingTasks.h"
#include "common/rest/RemoteTaskDownloader.h"
#include "host/server/AnswerText.h"
#include "host/server/DeliverySetup.h"
#include "platform/SystemChanges.h"
#include "support/Steps.h"

namespace {

using namespace Norvik::Common;
using namespace Norvik::Host;
using namespace Norvik::Tests;

struct SyncCount final : Norvik::Platform::RealSystemChanges {
  int Sync(int descriptor) override {
    ++syncs;
    return RealSystemChanges::Sync(descriptor);
  }
  int syncs = 0;
};

const Json& Cases(const char* name) { return DataOf("host/server/server-cases.json")[name]; }

class Deliveries : public StepsTest, public DeliverySetup {
 protected:
  Deliveries() {
    Verb("put", &DeliverySetup::PutSealed);
    Verb("put without seal", &DeliverySetup::Put);
    Verb("no server key", [this] { fs::remove(keys / "server.pub"); });
    Verb("server key", &DeliverySetup::PutServerKey);
    Verb("another server key", [this] {
      SealingKeys(folder / "another").ForSealing();
      fs::copy_file(folder / "another" / "agent.pub", keys / "server.pub",
                    fs::copy_options::overwrite_existing);
    });
    Verb("put for nobody", &DeliverySetup::PutSealedToOwnKey);
    Verb("server opens", [this] { return LastOpened(); });
    Verb("status", &DeliverySetup::Report);
    Verb("answer", &DeliverySetup::Answer);
    Verb("damage answer", [this](const std::string& text) { WriteFile(AnswerFile(), text); });
    Verb("waiting answers", [this] { return FilesBelow(folder / "answers").size(); });
    Verb("restart", &DeliverySetup::Restart);
    Verb("server", &DeliverySetup::Break);
    Verb("pass", [this](long time) { clock->Move(seconds(time)); });
    Verb("set clock", [this](long time) { clock->SetTimeOfDay(START + time); });
    Verb("next round in",
         [this](double least, double most) { EXPECT_THAT(Round(), AllOf(Ge(least), Le(most))); });
    Verb("requests", [this] { return server.Requests(); });
    Verb("waiting", [this] { return Waiting(); });
    Verb("warns of", [this](const std::string& text) {
      EXPECT_THAT(log_.Texts(3), ElementsAre(HasSubstr(text)));
    });
  }

 private:
  const LogCapture log_;
};

TEST_P(Deliveries, SendWhatWaitsAndLoseNothing) { Follow(); }

INSTANTIATE_TEST_SUITE_P(Rows, Deliveries, ValuesIn(Cases("deliveries")),
                         [](const auto& row) -> std::string { return row.param["name"]; });

TEST(Delivery, LosesNothingToABadServerAndReportsItInOneLine) {
  for (const Json& row : Cases("bad servers")) {
    SCOPED_TRACE(row["name"]);
    DeliverySetup setup;
    setup.PutSealed("m.jsonkob", "one");
    const std::string concerned = row["fault"].value("resource", "");
    // What is concerned is sent first: a failure of the server ends the round.
    if (concerned == "answers") {
      setup.Answer("one");
    } else {
      setup.Report("a");
    }
    setup.Break(row);
    const LogCapture log;
    EXPECT_GT(setup.Round(), 4.9);
    const bool goesOn = row.value("goes on", concerned == "statuses");
    EXPECT_THAT(setup.Waiting(), SizeIs(goesOn ? 0 : 1));
    EXPECT_EQ(setup.queue->IsEmpty(), concerned == "files" || concerned == "answers");
    EXPECT_EQ(setup.answers->IsEmpty(), concerned != "answers");
    EXPECT_THAT(log.Texts(3),
                ElementsAre(AllOf(HasSubstr("The server " + setup.options.Origin() + " "),
                                  HasSubstr(row["reason"].get<std::string>()))));
    setup.Break();
    setup.clock->Move(10s);
    EXPECT_EQ(setup.Round(), -1);
    EXPECT_THAT(setup.Waiting(), SizeIs(0));
    EXPECT_TRUE(setup.queue->IsEmpty() && setup.answers->IsEmpty());
  }
}

/// A table of these rows, each a list of cells; the first row may be titles.
TaskAnswer TableOf(const Json& rows, bool titles) {
  TaskAnswer answer{"7f0c", "12", 1011, {}};
  auto& table = answer.result.response.table;
  table.HasTitles(titles);
  for (const Json& row : rows) {
    table.AddNewRow();
    for (const Json& cell : row) {
      if (cell.is_boolean()) table.AddCellToLastRow(cell.get<bool>());
      if (cell.is_number_integer()) table.AddCellToLastRow(cell.get<int>());
      if (cell.is_number_float()) table.AddCellToLastRow(cell.get<double>());
      if (cell.is_string()) table.AddCellToLastRow(cell.get<std::string>());
    }
  }
  return answer;
}

/// What arrives of an answer, without its id and its time.
PlainJson Arrived(const Json& given) {
  TaskAnswer answer = TableOf(PartOf(given, "rows"), given.value("titles", false));
  if (given.contains("text")) answer.result.response.text = given["text"].get<std::string>();
  answer.result.response.success = given.value("success", false);
  answer.result.response.result = given.value("result", 0);
  answer.result.failure = given.value("failure", "");
  DeliverySetup setup;
  setup.answers->Add(answer);
  const std::string id = setup.answers->First().value().id;
  EXPECT_EQ(setup.Round(), -1);
  PlainJson arrived;
  setup.server.Set([&](State& state) { arrived = PlainJson::parse(state.answer); });
  EXPECT_EQ(arrived["id"], id);
  EXPECT_EQ(arrived["time"], START);
  arrived.erase("id");
  arrived.erase("time");
  return arrived;
}

TEST(AnswerOfATask, ArrivesWithAllThatTheActionSaid) { ExpectRows(Cases("answers"), Arrived); }

TEST(AnswerOfATask, IsCutAfterAWholeRowOrCharacter) {
  const std::string kilobyte(1024, 'x');
  const auto sent = [](const TaskAnswer& answer) {
    const std::string text = AnswerText(std::string(36, 'a'), answer, {});
    EXPECT_THAT(text.size(), AllOf(Le(LARGEST_ANSWER), Gt(LARGEST_ANSWER - 2048)));
    const PlainJson json = PlainJson::parse(text);
    EXPECT_EQ(json["truncated"], true);
    return json;
  };
  const PlainJson table = sent(TableOf(Json(9000, {1, kilobyte}), true));
  EXPECT_THAT(table["rows"], AllOf(SizeIs(Gt(8000u)), SizeIs(Lt(8192u)), Each(SizeIs(2))));
  for (const char* unit : {"\xE2\x82\xAC", "\n", "\x01", "\xFF"}) {
    std::string text = "a";
    while (text.size() < LARGEST_ANSWER + 10) text += unit;
    TaskAnswer answer = TableOf({{"Name"}, {"row"}}, true);
    answer.result.response.text = text;
    const PlainJson json = sent(answer);
    EXPECT_THAT(json["rows"], SizeIs(0));
    const std::string left = json["text"];
    EXPECT_EQ(*unit == '\xFF' ? left.substr(1, 3) : text.substr(0, left.size()),
              *unit == '\xFF' ? "\xEF\xBF\xBD" : left);
  }
  const std::string whole = AnswerText("i", TableOf(Json(20, {kilobyte}), false), {}, 32 << 10);
  EXPECT_THAT(PlainJson::parse(whole)["rows"], SizeIs(20));
}

TEST(AnswerQueue, IsBoundedByNumberAndSizeAndNumbersOn) {
  const TemporaryFolder folder;
  const auto place = folder / "answers";
  const auto clock = std::make_shared<FakeActionClock>(START);
  const LogCapture log;
  AnswerQueue queue(place, clock, {3, 2000});
  EXPECT_FALSE(fs::exists(place)) << "made with the first answer";
  for (const char* text : {"a", "b", "c", "d", "e"}) queue.Add(AnswerOf(text));
  EXPECT_THAT(log.Texts(2), ElementsAre(HasSubstr("the oldest 1 are dropped")));
  EXPECT_EQ(fs::status(queue.First()->file).permissions(), fs::owner_read | fs::owner_write);
  WriteFile(place / "7-notes.json", "x");
  clock->Move(60s);
  queue.Add(AnswerOf(std::string(1700, 'x')));
  EXPECT_THAT(AnswersIn(place), ElementsAre(Pair(6, _)));
  EXPECT_THAT(log.Texts(2), ElementsAre(_, HasSubstr("the oldest 4 are dropped")));
  AnswerQueue(place, clock).Add(AnswerOf("next"));
  EXPECT_THAT(AnswersIn(place), ElementsAre(Pair(6, _), Pair(7, _)));
  AnswerQueue smaller(place, clock, {1, 2000});
  EXPECT_THAT(AnswersIn(place), ElementsAre(Pair(7, _)));
  fs::remove_all(place);
  WriteFile(place, "no folder");
  smaller.Add(AnswerOf("lost"));
  EXPECT_THAT(log.Texts(2).back(), HasSubstr("task t1 could not be stored and is lost"));
}

TEST(ServerLink, IsEnrolledByAnAnswerThatNamesTheAgentAndHasATokenOnly) {
  for (const Json& row : Cases("enrolments")) {
    SCOPED_TRACE(row[0]);
    DeliverySetup setup;
    std::string body = row[0];
    boost::replace_all(body, "\"ID\"", "\"" + setup.options.identity->Get().identifier + "\"");
    boost::replace_all(body, "LONG", std::string(513, 'x'));
    setup.server.Set([&](State& state) { state.enrolmentBody = body; });
    setup.Report("a");
    const LogCapture log;
    EXPECT_GT(setup.Round(), 4.9);
    EXPECT_THAT(log.Texts(3), ElementsAre(HasSubstr(row[1].get<std::string>())));
    EXPECT_THAT(setup.server.Requests(), ElementsAre("enrol"));
    EXPECT_EQ(setup.options.identity->Get().server, "");
  }
}

std::string AnswerToQuestion(const std::string& body) {
  DeliverySetup setup;
  ServerLink link(setup.options);
  setup.Break({{"fault", {{"status", 200}, {"resource", "messages"}, {"body", body}}}});
  ProcessMessageResponse response;
  if (!link.ProcessMessage(ProcessMessageRequest(), response)) return "none";
  return std::to_string(response.result) + " " + response.message.utf8_string();
}

TEST(ServerLink, UnderstandsOnlyAnswersToQuestionsOfTheRightTypes) {
  ExpectRows(Cases("message answers"), AnswerToQuestion);
}

TEST(ServerLink, DeliversFromStartToStopAndSleepsInBetween) {
  DeliverySetup setup;
  ServerLink link(setup.options);
  WriteFile(setup.options.outbox / "m.jsonkob", SEAL + "one");
  link.NewFileOnOutbox();
  link.ReportTaskAnswer(AnswerOf("one"));
  link.ReportTaskStatus(StatusOf("first"));
  link.ReportTaskStatus(StatusOf(""));
  EXPECT_THAT(setup.server.Requests(), SizeIs(0));
  link.Start();
  ASSERT_TRUE(setup.server.WaitForRequests(4));
  link.ReportTaskAnswer(AnswerOf("two"));
  ASSERT_TRUE(setup.server.WaitForRequests(5));
  WriteFile(setup.options.outbox / "m.jsonkob", SEAL + "two");
  link.NewFileOnOutbox();
  ASSERT_TRUE(setup.server.WaitForRequests(6));
  link.Stop();
  EXPECT_THAT(setup.server.Requests(),
              ElementsAre("enrol", "statuses 7", "answers 1011 one", "files m.jsonkob one",
                          "answers 1011 two", "files m.jsonkob two"));
}

TEST(ServerLink, AStopDoesNotWaitForTheServer) {
  DeliverySetup setup;
  std::promise<void> asked;
  setup.server.Set([&](State& state) {
    state.onKept = [&] { asked.set_value(); };
    state.fault = {{"status", 200}, {"sends", "nothing"}, {"keeps", true}};
  });
  setup.options.limits.request = 10min;
  WriteFile(setup.options.outbox / "m.jsonkob", SEAL + "one");
  ServerLink link(setup.options);
  const LogCapture log;
  link.Start();
  asked.get_future().wait();
  link.Stop();
  PendingTasksResponse answer;
  EXPECT_FALSE(link.ProcessMessage(PendingTasksRequest(), answer));
  EXPECT_THAT(log.Texts(3), ElementsAre(HasSubstr("the agent stops")));
  EXPECT_THAT(setup.Waiting(), SizeIs(1));
}

TEST(ServerLink, SendsTheStatesOfTasksBeforeItAsksForMore) {
  DeliverySetup setup;
  setup.server.Set([](State& state) {
    state.answers = {{"messages", R"({"result": 3, "message": "{\"available\":true}"})"},
                     {"tasks", R"({"tasks": [{"identifier": "t", "code": 5}]})"}};
  });
  const auto link = std::make_shared<ServerLink>(setup.options);
  std::vector<std::set<std::string>> listed;
  link->OnTasksListed([&](const auto& identifiers) { listed.push_back(identifiers); });
  ProcessMessageRequest request;
  request.message = wxString::FromUTF8("ü\"");
  ProcessMessageResponse response;
  ASSERT_TRUE(link->ProcessMessage(request, response));
  EXPECT_EQ(response.result, 3u);
  EXPECT_EQ(response.message, "{\"available\":true}");
  setup.server.Set([](State& state) { state.answers["messages"] = R"({"result": "much"})"; });
  EXPECT_FALSE(link->ProcessMessage(request, response));

  RemoteTaskDownloader downloader(link, PRODUCT_KOB, {}, "agent", nullptr);
  link->ReportTaskStatus(StatusOf("r"));
  setup.server.Set([](State& state) { state.fault = {{"status", 500}, {"resource", "statuses"}}; });
  EXPECT_THAT(downloader.GetSchedules(), SizeIs(0));
  setup.Break();
  EXPECT_THAT(downloader.GetSchedules(), SizeIs(1));
  for (const char* tasks : {R"([{"identifier": "s"}, {"code": 5}])", R"([{"identifier": "u"}])"}) {
    setup.server.Set(
        [&](State& state) { state.answers["tasks"] = std::string(R"({"tasks": )") + tasks + "}"; });
    EXPECT_THAT(downloader.GetSchedules(), SizeIs(0));
  }
  setup.server.Set([](State& state) { state.answers["tasks"] = R"({"tasks": 5})"; });
  const LogCapture log;
  EXPECT_THAT(downloader.GetSchedules(), SizeIs(0));
  EXPECT_THAT(log.Texts(3), ElementsAre("The server " + setup.options.Origin() +
                                        " gave no answer to a question: tasks is no list"));
  EXPECT_THAT(listed, ElementsAre(std::set<std::string>{"t"}, std::set<std::string>{"u"}));
  const std::string message = R"(messages {"code":0,"message":"ü\"","subcode":0})";
  const std::string tasks = R"(tasks {"agentIdentifier":"agent","product":1})";
  EXPECT_THAT(setup.server.Requests(),
              ElementsAre("enrol", message, message, "statuses 7", tasks, tasks, tasks, tasks));
}

TEST(ServerLink, SendsAnswersBeforeItAsksForTasksUnlessTheyAreRefused) {
  DeliverySetup setup;
  ServerLink link(setup.options);
  PendingTasksResponse answer;
  const auto ask = [&](const Json& fault) {
    setup.Break({{"fault", fault}});
    return link.ProcessMessage(PendingTasksRequest(), answer);
  };
  link.ReportTaskAnswer(AnswerOf("one"));
  EXPECT_FALSE(ask({{"status", 500}, {"resource", "answers"}}));
  EXPECT_TRUE(ask({{"status", 404}, {"resource", "answers"}}));
  EXPECT_TRUE(ask(Json::object())) << "a refused answer waits for its time";
  EXPECT_TRUE(link.SendReports());
  const std::string tasks = R"(tasks {"agentIdentifier":"","product":1})";
  EXPECT_THAT(setup.server.Requests(), ElementsAre("enrol", tasks, tasks));
  ServerLink next(setup.options);
  EXPECT_TRUE(next.ProcessMessage(PendingTasksRequest(), answer));
  EXPECT_THAT(setup.server.Requests(),
              ElementsAre("enrol", tasks, tasks, "answers 1011 one", tasks));
}

TEST(ServerLink, ShowsTheSecretAndTheHardwareToNobodyButForTheEnrolment) {
  DeliverySetup setup;
  setup.options.enrolmentSecret = "s3cret";
  setup.options.hardware = {"C02TEST", "Mac14,2", ""};
  setup.Restart();
  setup.PutSealed("m.jsonkob", "one");
  setup.Report("a");
  EXPECT_EQ(setup.Round(), -1);
  PlainJson enrolment;
  setup.server.Set([&](State& state) { enrolment = PlainJson::parse(state.enrolment); });
  enrolment.erase("hostName");
  enrolment.erase("agentVersion");
  EXPECT_EQ(enrolment,
            PlainJson({{"serialNumber", "C02TEST"}, {"model", "Mac14,2"}, {"secret", "s3cret"}}));
  EXPECT_THAT(setup.server.Requests(), Each(Not(HasSubstr("s3cret"))));
}

TEST(ServerLink, TrustsOnlyTheConfiguredAuthorityAndTheRightName) {
  const TemporaryFolder folder;
  for (const auto& [name, alternative] :
       std::map<std::string, std::string>{{"right", "IP:127.0.0.1"},
                                          {"foreign", "IP:127.0.0.1"},
                                          {"elsewhere", "DNS:else.where"}}) {
    const std::string file = (folder / name).string();
    const std::string command =
        "openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -days 2 -subj "
        "/CN=" +
        name + " -addext subjectAltName=" + alternative + " -keyout " + file + ".key -out " + file +
        ".pem >/dev/null 2>&1";
    ASSERT_EQ(std::system(command.c_str()), 0);
  }
  for (const Json& row : Cases("certificates")) {
    SCOPED_TRACE(row["name"]);
    const std::string file = (folder / row["server"].get<std::string>()).string();
    const std::string trusted = row["trusted"];
    DeliverySetup setup(file + ".pem", file + ".key");
    if (!trusted.empty()) setup.options.caFile = (folder / trusted).string() + ".pem";
    ServerLink link(setup.options);
    const LogCapture log;
    PendingTasksResponse answer;
    EXPECT_EQ(link.ProcessMessage(PendingTasksRequest(), answer), row["reached"].get<bool>());
    EXPECT_THAT(setup.server.Requests(), SizeIs(row["reached"] ? 2 : 0));
    EXPECT_THAT(log.Texts(3), SizeIs(row["reached"] ? 0 : 1));
  }
}

TEST(StatusQueue, OutlivesAnyEndOfTheProcessAndIsBounded) {
  const TemporaryFolder folder;
  const auto file = folder / "statuses.jsonl";
  const auto clock = std::make_shared<FakeActionClock>(START);
  const auto count = std::make_shared<SyncCount>();
  Norvik::Platform::SetSystemChanges(count);
  StatusQueue(file, clock).Add({StatusOf("a")});
  Norvik::Platform::SetSystemChanges(nullptr);
  EXPECT_EQ(count->syncs, 1);
  WriteFile(file, ContentOf(file) + "{\"id\": \"cut");
  const LogCapture log;
  StatusQueue(file, clock, 2).Add({StatusOf("\xFF\n" + std::string(5000, 'x'))});
  EXPECT_THAT(log.Texts(3), SizeIs(1)) << "the line that was cut";
  StatusQueue queue(file, clock, 2);
  queue.Add({StatusOf("c")});
  EXPECT_THAT(log.Texts(2), SizeIs(1)) << "the oldest is dropped";
  EXPECT_FALSE(queue.DropThrough("unknown"));
  EXPECT_TRUE(queue.DropThrough(queue.First(5).at(0).id));
  const auto left = StatusQueue(file, clock, 2).First(5);
  ASSERT_THAT(left, SizeIs(1));
  EXPECT_THAT(left[0].json, HasSubstr(R"("time":1767225600,"requestId":"c")"));
}

TEST(StatusQueue, WritesAsManyStatesAsThereAreAndSeldomMore) {
  constexpr std::size_t LIMIT = 100;
  const TemporaryFolder folder;
  const auto file = folder / "statuses.jsonl";
  const auto clock = std::make_shared<FakeActionClock>(START);
  const auto count = std::make_shared<SyncCount>();
  const LogCapture log;
  StatusQueue queue(file, clock, LIMIT);
  Norvik::Platform::SetSystemChanges(count);
  queue.Add(std::vector<TaskResponseInfo>(30 * LIMIT, StatusOf("many")));
  Norvik::Platform::SetSystemChanges(nullptr);
  EXPECT_EQ(count->syncs, 1);
  const std::size_t full = ContentOf(file).size();
  const auto number = [&] {
    struct stat status {};
    return ::stat(file.c_str(), &status) == 0 ? status.st_ino : 0;
  };
  int rewritten = 0;
  for (std::size_t i = 0; i < 10 * LIMIT; ++i) {
    const auto before = number();
    queue.Add({StatusOf("one")});
    if (number() != before) ++rewritten;
    EXPECT_LE(ContentOf(file).size(), 2 * full);
  }
  EXPECT_THAT(rewritten, AllOf(Ge(8), Le(10)));
  EXPECT_THAT(log.Texts(2), ElementsAre(HasSubstr("the oldest 2900 are dropped")));
  clock->Move(60s);
  const auto first = queue.First(10);
  ASSERT_TRUE(queue.DropThrough(first[4].id));
  EXPECT_EQ(StatusQueue(file, clock, LIMIT).First(1).at(0).id, first[5].id);
  queue.Add({6, StatusOf("one")});
  EXPECT_THAT(log.Texts(2), ElementsAre(_, HasSubstr("the oldest 1001 are dropped")));
  ASSERT_TRUE(queue.DropThrough(queue.First(LIMIT).back().id));
  EXPECT_EQ(ContentOf(file), "");
}

TEST(StatusQueue, OnAFullDiskTriesALongFileSeldom) {
  const TemporaryFolder folder;
  const auto file = folder / "statuses.jsonl";
  StatusQueue queue(file, std::make_shared<FakeActionClock>(START));
  queue.Add(std::vector<TaskResponseInfo>(320, StatusOf("x")));
  const LogCapture log;
  fs::rename(folder.Path(), folder.Path().string() + ".away");
  for (int i = 0; i < 42; ++i) queue.Add({StatusOf("y")});
  EXPECT_THAT(log.Texts(2), SizeIs(2));
  fs::rename(folder.Path().string() + ".away", folder.Path());
  for (int i = 0; i < 20; ++i) queue.Add({StatusOf("y")});
  EXPECT_THAT(StatusQueue(file, std::make_shared<FakeActionClock>(START)).First(1000), SizeIs(382));
}

}  // namespace
