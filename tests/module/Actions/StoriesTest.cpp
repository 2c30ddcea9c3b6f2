#include <boost/core/demangle.hpp>

#include "common/database/DataBase.h"
#include "common/text/Text.h"
#include "module/CaseFolder.h"
#include "module/DataAccess/KOBDataSourceV2.h"
#include "module/ModuleUnderTest.h"
#include "module/RUD/Data/RudDataSourceV2.h"
#include "module/TaskTable.h"
#include "support/ProgressRecorder.h"

namespace Norvik::KOB {
namespace {

using namespace Tests;
using Common::V2::DataBase;

/// A fault during a step; it ends with the object.
using Fault = std::shared_ptr<void>;

/// Another connection holds a write lock. The busy timeout is short.
Fault HeldDatabase(FakeHost&) {
  auto other = std::make_shared<DataBase>();
  TestDatabase::Run("PRAGMA busy_timeout=20");
  other->ExecuteSentence("insert into DATA(name, value) values('held', '1')");
  return other;
}

Fault DiskThatSavingFills(FakeHost& host) {
  return std::make_shared<FullDisk>(fs::file_size(host.database.File().string() + "-wal") +
                                    1100000);
}

Fault DiskThatIsFullAfterTheDocument(FakeHost& host) {
  auto full = std::make_shared<std::unique_ptr<FullDisk>>();
  host.pipeline->beforeStep = [full](const std::string& step) {
    if (step == "compress") *full = std::make_unique<FullDisk>(10);
  };
  return full;
}

Fault MissingTable(FakeHost&) {
  TestDatabase::Run("alter table RUD2_FILE_PATH rename to MISSING");
  return {nullptr,
          [](void*) { TestDatabase::Run("alter table MISSING rename to RUD2_FILE_PATH"); }};
}

const std::map<std::string, Fault (*)(FakeHost&)> FAULTS = {
    {"a database that another process holds", HeldDatabase},
    {"a disk that saving fills", DiskThatSavingFills},
    {"a disk that is full after the document", DiskThatIsFullAfterTheDocument},
    {"a table that is missing", MissingTable},
};

/// Whether a text equals the wanted one. "*" at the end of the wanted one matches any rest.
bool Fits(const std::string& text, const std::string& wanted) {
  return wanted.back() == '*' ? text.rfind(wanted.substr(0, wanted.size() - 1), 0) == 0
                              : text == wanted;
}

std::string ValueText(const Common::ActionPropertyValue& value) {
  const auto text = [](const auto& held) -> std::string {
    using Value = std::decay_t<decltype(held)>;
    if constexpr (std::is_arithmetic_v<Value>) return std::to_string(held);
    if constexpr (std::is_same_v<Value, wxString>) return Common::ToUtf8(held);
    return "...";
  };
  return boost::apply_visitor(text, value);
}

TextList StartedBy(const FakeActionSystem& actions) {
  TextList texts = actions.Texts();
  for (std::size_t i = 0; i < texts.size(); ++i) {
    for (const auto& [name, value] : actions.All()[i].action.parameters.Values()) {
      texts[i] += " " + name + "=" + ValueText(value);
    }
  }
  return texts;
}

/// A module with its own host and a folder, the only one that an inventory of files scans.
/// stories/README.md describes the settings and the outcome.
class Story {
 public:
  explicit Story(const Json& entry) : host_(entry.value("processKind", 0)) {
    host_.dependencies->configuration =
        ConfigurationOf(entry.value("configuration", Json::object()));
    module_.emplace(host_);
    TestDatabase::Run("create table STATES(state INTEGER)");
    for (const std::string event : {"insert", "update"}) {
      TestDatabase::Run("create trigger on_" + event + " after " + event +
                        " on RUD2_CURRENT_STATUS begin "
                        "insert into STATES values(new.id_state_harverting); end");
    }
    Set(entry);
  }

  void Set(const Json& step) {
    SetServices(step);
    SetStores(step);
  }

  /// Runs a step and returns its outcome by part.
  Json Perform(const Json& step) {
    const std::size_t logged = host_.log.Lines().size();
    progress_->Take();
    Json outcome = Json::object();
    try {
      Run(step);
    } catch (const std::exception& error) {
      outcome["throws"] = boost::core::demangle(typeid(error).name());
    }
    fault_.reset();
    host_.pipeline->beforeStep = nullptr;
    outcome["steps"] = std::exchange(host_.pipeline->calls, {});
    outcome["started"] = StartedBy(*host_.actions);
    host_.actions->Forget();
    if (host_.communications) AddCommunications(outcome);
    outcome["recorded"] = Recorded();
    outcome["states"] = TakeStates();
    outcome["files"] = TestDatabase::Run("select 1 from RUD2_LAST_INVENTORY").size();
    outcome["drives"] = TestDatabase::Run("select 1 from KOB_NETWORK_DRIVES").size();
    outcome["delivered"] = TakeDelivered();
    outcome["left"] = NamesIn(host_.Work()).size();
    if (step.contains("progress")) outcome["progress"] = Progress();
    outcome["log"] = LogSince(logged, step.value("log", TextList()), step.value("wholeLog", 0));
    return outcome;
  }

 private:
  Common::AgentConfigurationInfo ConfigurationOf(const Json& wanted) const {
    Common::AgentConfigurationInfo configuration;
    if (wanted.is_null()) return configuration;
    configuration.profileId = wanted.value("profileId", 0U);
    configuration.kob.emplace();
    auto& kob = *configuration.kob;
    kob.excludedFiles = wanted.value("excludedFiles", TextList());
    kob.excludedPaths = wanted.value("excludedPaths", AllBut(tree_.Path()));
    kob.includedExtensions = wanted.value("includedExtensions", TextList{"norvikdoc"});
    kob.additionalExtensions = wanted.value("additionalExtensions", TextList());
    return configuration;
  }

  Common::ActionParameters ParametersOf(const Json& values) const {
    Common::ActionParameters parameters;
    for (const auto& [name, value] : values.items()) {
      if (value.is_boolean()) parameters.Set(name, value.get<bool>());
      if (value.is_number()) parameters.Set(name, value.get<unsigned long long>());
      if (value.is_string()) parameters.Set(name, Common::WxStringFromStdString(value));
      if (value.is_object()) parameters.Set(name, ConfigurationOf(value));
    }
    return parameters;
  }

  void Run(const Json& step) {
    if (step["run"] == "what waits") return host_.actions->RunWaiting();
    const auto parameters = ParametersOf(PartOf(step, "with"));
    const auto communications = host_.communications;
    const std::size_t before = communications ? communications->statuses.size() : 0;
    const auto response = module_->Run(step["run"], parameters);
    // Of runs as a task has them: in an enrolled service, and without the states of other runs.
    const bool isOfTask = !step.contains("meanwhile") && step.value("processKind", 0) == 0 &&
                          step.value("token", "token") != "";
    if (!isOfTask || !communications) return;
    const auto first = communications->statuses.begin() + static_cast<std::ptrdiff_t>(before);
    ExpectAsListed(step["run"], parameters, {first, communications->statuses.end()}, response);
  }

  void Answer(const std::string& message) {
    host_.communications->answer = Json{{"result", 0}, {"message", message}}.dump();
  }

  void SetServices(const Json& step) {
    const auto on = [&](const char* key, auto action) {
      if (step.contains(key)) action(step[key]);
    };
    on("message", [&](const std::string& text) { Answer(text); });
    on("nested", [&](std::size_t depth) { Answer(std::string(depth, '[')); });
    on("answer", [&](const std::string& text) { host_.communications->answer = text; });
    on("accepts", [&](bool accepts) { host_.communications->accepts = accepts; });
    on("token", [&](const std::string& text) { host_.identification->token = text; });
    on("identityFails", [&](const std::string& text) { host_.identification->failure = text; });
    on("meanwhile", [&](const Json& other) { Meanwhile(other); });
    on("torn", [&](const std::string& text) {
      host_.pipeline->beforeStep = [=](const std::string&) { throw std::runtime_error(text); };
    });
    on("survey", [&](const Json& flags) {
      auto& survey = host_.dependencies->configuration.survey;
      survey.reset();
      if (flags.is_array()) survey = Common::SurveyInfo{flags[0], flags[1], flags[2]};
    });
    for (const auto& [session, process] : PartOf(step, "sessions").items()) {
      host_.communications->sessions[std::stoull(session)] = {process.get<std::string>()};
    }
    const std::string gone = step.value("gone", "");
    if (gone == "dependencies") host_.dependencies.reset();
    if (gone == "identification") host_.identification.reset();
    if (gone == "communications") host_.communications.reset();
  }

  /// Lets another thread run actions, once, at the given moment of the step.
  void Meanwhile(const Json& other) {
    const auto ask = [=] {
      const auto run = [&] {
        for (const Json& code : other["run"]) Run({{"run", code}, {"with", PartOf(other, "with")}});
      };
      std::thread(run).join();
    };
    const std::string moment = other["at"];
    if (moment == "start") host_.actions->onNextStart = ask;
    if (moment == "send") host_.communications->onNextSend = ask;
    host_.pipeline->beforeStep = [=, done = false](const std::string& step) mutable {
      if (step == moment && !std::exchange(done, true)) ask();
    };
  }

  void SetStores(const Json& step) {
    const auto on = [&](const char* key, auto action) {
      if (step.contains(key)) action(step[key]);
    };
    on("type", [&](const Json& type) {
      Common::AgentData data(host_.database, "DATA");
      data.Remove("OPERATING_SYSTEM_TYPE");
      if (type.is_string()) data.SetString("OPERATING_SYSTEM_TYPE", type.get<std::string>());
    });
    on("lastInventory", [](int time) { DataBase::SetDataTable("KOB_INVENTORY", time); });
    on("hoursSinceTotal", [](int hours) {
      KOBDataSourceV2::updateRudCompletoLastInventory(system_clock::now() -
                                                      std::chrono::hours(hours));
    });
    on("diedIn", [](int state) {
      V2::RudDataSource::SetStatus(static_cast<V2::RudStatus>(state), 1, V2::DateBegin);
    });
    on("sql", [](const std::string& sentence) { TestDatabase::Run(sentence); });
    for (const auto& name : step.value("make", TextList())) WriteFile(tree_ / name, "content");
    for (int i = step.value("makeMany", 0); i > 0; --i) {
      WriteFile(tree_ / (std::string(200, 'n') + std::to_string(i) + ".norvikdoc"), "content");
    }
    on("touch", [&](const std::string& name) {
      fs::last_write_time(tree_ / name, fs::last_write_time(tree_ / name) + 10);
    });
    on("remove", [&](const std::string& name) { fs::remove(tree_ / name); });
    on("fault", [&](const std::string& name) { fault_ = FAULTS.at(name)(host_); });
  }

  void AddCommunications(Json& outcome) {
    FakeCommunications& communications = *host_.communications;
    TextList sent;
    for (const auto& [session, message] : std::exchange(communications.sent, {})) {
      sent.push_back(std::to_string(session) + " " + std::to_string(message.kind) + " " +
                     std::to_string(message.code) + " " + message.key + "=" + message.value);
    }
    outcome["sent"] = sent;
    outcome["statuses"] = communications.TakeStatuses();
    outcome["requests"] = std::exchange(communications.requests, {});
    outcome["announced"] = std::exchange(communications.newFiles, 0);
  }

  /// Keys of the times that were written since the last call.
  TextList Recorded() const {
    TextList keys;
    for (const char* key : {"KOB_INVENTORY", "RUD_INVENTORY", "RUD_INVENTORY_INCREMENTAL"}) {
      if (DataBase::GetDataTable(key) < begun_) continue;
      keys.push_back(key);
      DataBase::SetDataTable(key, 1);
    }
    return keys;
  }

  static std::vector<int> TakeStates() {
    std::vector<int> states;
    for (const auto& row : TestDatabase::Run("select state from STATES order by rowid")) {
      states.push_back(boost::get<int>(row.at(0)));
    }
    TestDatabase::Run("delete from STATES");
    return states;
  }

  /// Removes the document from the outbox and returns its files as "status name", or their number
  /// if it is over 100.
  Json TakeDelivered() const {
    TextList files;
    if (NamesIn(host_.Outbox()).empty()) return files;
    const Json document = Json::parse(host_.DeliveredDocument());
    fs::remove(host_.Outbox() / NamesIn(host_.Outbox()).front());
    if (!document.contains("paths")) {
      const std::string profile = document["agentConfiguration"]["profileId"].dump();
      return TextList{"an inventory of the machine" +
                      (profile == "0" ? "" : ", profile " + profile)};
    }
    for (const auto& path : document["paths"]) {
      EXPECT_EQ(path["pathName"], tree_.Path().string());
      for (const auto& file : path["files"]) {
        files.push_back(file["fileStatus"].dump() + " " + file["filename"].get<std::string>());
      }
    }
    if (files.size() > 100) return files.size();
    std::sort(files.begin(), files.end());
    return files;
  }

  /// The reported progress without the sections.
  TextList Progress() const {
    TextList texts = progress_->All();
    const auto isSection = [](const std::string& text) { return text[0] == '+' || text[0] == '-'; };
    texts.erase(std::remove_if(texts.begin(), texts.end(), isSection), texts.end());
    return texts;
  }

  /// The wanted lines that were logged in this order, and all other lines up to a level.
  TextList LogSince(std::size_t first, const TextList& wanted, int levels) const {
    TextList found;
    auto next = wanted.begin();
    const auto lines = host_.log.Lines();
    for (auto line = lines.begin() + static_cast<long>(first); line != lines.end(); ++line) {
      const std::string text = std::to_string(line->level) + " " + line->text;
      if (next != wanted.end() && Fits(text, *next)) {
        found.push_back(*next++);
      } else if (line->level <= levels) {
        found.push_back(text);
      }
    }
    return found;
  }

  const std::time_t begun_ = std::time(nullptr);
  const TemporaryFolder tree_;
  const ProgressRecording progress_;
  FakeHost host_;
  std::optional<ModuleUnderTest> module_;
  Fault fault_;
};

/// The parts in the order of their names, without empty ones.
std::string Sorted(const Json& parts) {
  nlohmann::json sorted = nlohmann::json::object();
  for (const auto& [part, what] : parts.items()) {
    if (what != Json(0) && what != Json::array()) sorted[part] = what;
  }
  return sorted.dump(1, ' ', false, nlohmann::json::error_handler_t::replace);
}

class Stories : public testing::TestWithParam<Case> {};

TEST_P(Stories, HaveTheExpectedOutcome) {
  const Json& entry = GetParam().entry;
  Story story(entry);
  for (const Json& row : Resolved(entry.value("steps", Json::parse("[{}]")), entry)) {
    Json step = entry;
    step.update(row);
    story.Set(row);
    Json wanted = Resolved(PartOf(step, "comes"), entry);
    if (step.contains("log")) wanted["log"] = step["log"];
    if (step.contains("progress")) wanted["progress"] = Resolved(step["progress"], entry);
    for (int left = step.value("times", 1); left > 0; --left) {
      EXPECT_EQ(Sorted(story.Perform(step)), Sorted(wanted)) << Shown(row) << left;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Cases, Stories, ValuesIn(CasesIn("module/Actions/stories")), CaseName());

}  // namespace
}  // namespace Norvik::KOB
