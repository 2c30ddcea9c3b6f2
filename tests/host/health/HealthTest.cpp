#include <fcntl.h>
#include <netinet/in.h>

#include <future>

#include "common/database/AgentDatabase.h"
#include "common/database/DataBase.h"
#include "common/files/SealingKeys.h"
#include "host/health/HealthReport.h"
#include "host/server/ConnectionFacts.h"
#include "host/server/ManagementServer.h"
#include "platform/RecordedMachine.h"
#include "support/LocalClient.h"
#include "support/SchemaCheck.h"
#include "support/Steps.h"

namespace {

using namespace Norvik;
using namespace Norvik::Host;
using namespace Norvik::Tests;

/// Accepts no connection, or accepts them and says nothing.
class SilentServer {
 public:
  explicit SilentServer(bool accepts) {
    ::bind(listener_.Get(), reinterpret_cast<const sockaddr*>(&address_), sizeof(address_));
    ::listen(listener_.Get(), accepts ? 50 : 0);
    socklen_t size = sizeof(address_);
    ::getsockname(listener_.Get(), reinterpret_cast<sockaddr*>(&address_), &size);
    for (int i = 0; !accepts && i < 4; ++i) {
      fillers_.emplace_back(::socket(AF_INET, SOCK_STREAM, 0));
      ::fcntl(fillers_.back().Get(), F_SETFL, O_NONBLOCK);
      ::connect(fillers_.back().Get(), reinterpret_cast<const sockaddr*>(&address_), size);
    }
  }
  int Port() const { return ntohs(address_.sin_port); }

 private:
  static sockaddr_in Loopback() {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
  }
  sockaddr_in address_ = Loopback();
  const Platform::FileDescriptor listener_{::socket(AF_INET, SOCK_STREAM, 0)};
  std::vector<Platform::FileDescriptor> fillers_;
};

/// A data folder in which nothing is wrong, and ways to break it. Paths are relative to the folder
/// of the test; "$" in a text stands for it.
class BrokenSetups : public StepsTest {
 protected:
  BrokenSetups() {
    fs::create_directories(data_ / "log");
    fs::create_directories(data_ / "outbox");
    fs::permissions(data_, fs::owner_all);
    WriteFile(data_ / "log/agent.log", "");
    Common::SealingKeys(data_ / "keys").ForSealing();
    fs::copy_file(data_ / "keys/agent.pub", data_ / "keys/server.pub");
    Configure(Json::object());
    Sql("insert into DATA values('LAST_DOCUMENT', '" +
        std::to_string(system_clock::to_time_t(options_.now) - 60) + "')");
    options_.dataFolder = data_;
    options_.dataFolderGiven = true;
    options_.moduleFile = NORVIK_MODULE;
    options_.socket = folder_ / "agent.sock";
    AddWaysToBreak();
    AddServers();
    Verb("finds",
         [this](const std::string& name, const std::string& outcome, const std::string& keys,
                const std::string& text) { Expect(name, outcome, keys, text); });
  }

  void AddWaysToBreak() {
    Verb("write",
         [this](const std::string& name, const Bytes& text) { WriteFile(folder_ / name, text); });
    Verb("remove", [this](const std::string& name) { fs::remove_all(folder_ / name); });
    Verb("folder", [this](const std::string& name) { fs::create_directories(folder_ / name); });
    Verb("mode", [this](const std::string& name, const std::string& mode) {
      fs::permissions(folder_ / name, static_cast<fs::perms>(std::stoi(mode, nullptr, 8)));
    });
    Verb("resize", [this](const std::string& name, std::uintmax_t size) {
      fs::resize_file(folder_ / name, size);
    });
    Verb("age", [this](const std::string& name, long age) {
      fs::last_write_time(folder_ / name, system_clock::to_time_t(options_.now) - age);
    });
    Verb("sql", &BrokenSetups::Sql);
    Verb("later", [this](long time) { options_.now += seconds(time); });
    Verb("configure", &BrokenSetups::Configure);
    Verb("copy module", [this] {
      options_.moduleFile = folder_ / fs::path(NORVIK_MODULE).filename();
      fs::copy_file(NORVIK_MODULE, options_.moduleFile);
    });
    Verb("module", [this](const std::string& name) { options_.moduleFile = folder_ / name; });
    Verb("machine", [this](const std::string& name) {
      machine_.emplace(NORVIK_SOURCE_DIR "/tests/machines/" + name);
    });
  }

  void AddServers() {
    Verb("server", [this](const std::string& name) {
      const std::string file = Certificate(name);
      server_ = std::make_unique<ManagementServer>(file + ".pem", file + ".key");
      UseServer(server_->Port(), name == "elsewhere" ? name : "right");
      server_->Set([](ManagementServer::State& state) {
        state.agents[IDENTIFIER] = "Bearer 0123456789abcdef";
        state.answers["statuses"] = R"({"acknowledged": ""})";
      });
    });
    Verb("answers", [this](const Json& fault, const std::string& date) {
      server_->Set([&](ManagementServer::State& state) {
        state.fault = fault;
        state.date = date;
      });
    });
    Verb("forgets",
         [this] { server_->Set([](ManagementServer::State& state) { state.agents.clear(); }); });
    Verb("silent server", [this](bool accepts) {
      silent_ = std::make_unique<SilentServer>(accepts);
      UseServer(silent_->Port());
    });
    Verb("no server", [this] { UseServer(SilentServer(true).Port()); });
    Verb("requests", [this] { return server_->Requests(); });
  }

  void UseServer(int port, const std::string& trusted = "right") {
    Configure(
        {{"server",
          {{"address", "127.0.0.1"}, {"port", port}, {"caFile", Certificate(trusted) + ".pem"}}}});
    Enrol("https://127.0.0.1:" + std::to_string(port));
  }
  void Enrol(const std::string& server) const {
    WriteFile(
        data_ / "identity.json",
        Json{{"identifier", IDENTIFIER}, {"token", "0123456789abcdef"}, {"server", server}}.dump());
  }
  void Configure(const Json& keys) {
    Json all = {{"includedExtensions", {"app"}},
                {"excludedPaths", AllUsual()},
                {"inventorySchedule", {{"periodSeconds", 86400}}}};
    all.update(keys);
    WriteFile(data_ / "configuration.json", all.dump());
    Enrol("");
  }
  static TextList AllUsual() { return DefaultConfiguration().kob->excludedPaths; }
  void Sql(const std::string& statement) {
    const Common::AgentDatabase open(data_);
    Common::V2::DataBase dataBase;
    dataBase.ExecuteSentence(statement);
    dataBase.Commit();
  }
  /// A certificate of its own for 127.0.0.1, or for another name.
  std::string Certificate(const std::string& name) const {
    const std::string file = (folder_ / name).string();
    if (fs::exists(file + ".pem")) return file;
    const std::string subject = name == "elsewhere" ? "DNS:else.where" : "IP:127.0.0.1";
    const std::string command =
        "openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -days 20 -subj "
        "/CN=" +
        name + " -addext subjectAltName=" + subject + " -keyout " + file + ".key -out " + file +
        ".pem >/dev/null 2>&1";
    EXPECT_EQ(std::system(command.c_str()), 0);
    return file;
  }

  void Expect(const std::string& name, const std::string& outcome, const std::string& keys,
              const std::string& text) {
    std::vector<HealthCheck> checks;
    for (const HealthCheck& check : HealthChecks()) {
      if (check.name == name) checks.push_back(check);
    }
    ASSERT_EQ(checks.size(), 1u);
    const auto before = FilesBelow(folder_.Path());
    const Json found = ToJson(ExamineHealth(options_, checks))["checks"][0];
    EXPECT_EQ(found["outcome"], outcome) << found;
    EXPECT_EQ(found["keys"], Json(SeparateKeys(keys))) << found;
    EXPECT_THAT(found["text"].get<std::string>(), HasSubstr(text));
    EXPECT_EQ(found["remedy"] == "", outcome == "ok");
    EXPECT_EQ(FilesBelow(folder_.Path()), before);
  }

  static constexpr char IDENTIFIER[] = "6f2a3c1e-0d5b-4a7e-9c81-2b64d0e7f913";
  const LogCapture log_;
  const TemporaryFolder folder_;
  const fs::path data_ = folder_ / "data";
  HealthOptions options_;
  std::unique_ptr<ManagementServer> server_;
  std::unique_ptr<SilentServer> silent_;
  std::optional<Platform::RecordedMachine> machine_;
};

TEST_P(BrokenSetups, AreFoundByTheirCheckWithTheKeysThatAreEmpty) { Follow(); }

INSTANTIATE_TEST_SUITE_P(Rows, BrokenSetups, ValuesIn(DataOf("host/health/broken-setups.json")),
                         [](const auto& row) -> std::string { return row.param["name"]; });

struct WholeSetup : BrokenSetups {};

TEST_F(WholeSetup, IsReportedInTimeAndByTheSchemaWhateverTheServerDoes) {
  for (const bool accepts : {true, false}) {
    const SilentServer silent(accepts);
    UseServer(silent.Port());
    const auto begin = std::chrono::steady_clock::now();
    const HealthReport report = ExamineHealth(options_);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, seconds(8));
    EXPECT_GT(report.Count(Outcome::UNKNOWN), 3u);
    ExpectValid("doctor", JsonLine(ToJson(report)));
  }
}

/// Released at the end of the test that uses it.
std::promise<void>& Release() {
  static std::promise<void> promise;
  return promise;
}

TEST(CheckRun, ACheckThatDoesNotEndOrThrowsIsUnknown) {
  const TemporaryFolder folder;
  HealthOptions options;
  options.socket = folder / "none";
  const std::vector<HealthCheck> checks = {
      {"hangs", "t", "r", "disk",
       [](const Examined&) -> Finding {
         Release().get_future().wait();
         return {};
       }},
      {"throws", "t", "r", "", [](const Examined&) -> Finding { throw std::runtime_error("why"); }},
      {"ends", "t", "r", "*", [](const Examined&) -> Finding {
         return {Outcome::OK, "well"};
       }}};
  const auto results = RunChecks(checks, std::make_shared<Examined>(options), milliseconds(300));
  const auto shown = [&](std::size_t at) {
    const Finding& finding = results[at].finding;
    return NameOf(finding.outcome) + ("|" + finding.text) + "|" + finding.remedy + "|" +
           *finding.keys;
  };
  EXPECT_EQ(shown(0), "unknown|the check did not end within 300 ms|r|disk");
  EXPECT_EQ(shown(1), "unknown|why|r|");
  EXPECT_EQ(shown(2), "ok|well||");
  EXPECT_TRUE(AreChecksRunning());
  Release().set_value();
  EXPECT_TRUE(Eventually([] { return !AreChecksRunning(); }));
}

TEST(HealthChecks, AreThoseOfThePageAndOfTheSections) {
  const PlainJson schema =
      PlainJson::parse(ContentOf(NORVIK_SOURCE_DIR "/docs/schema/inventory.schema.json"));
  std::string table = "| check | ok if | otherwise | empty then |\n| --- | --- | --- | --- |\n";
  for (const HealthCheck& check : HealthChecks()) {
    std::string keys;
    for (const std::string& key : SeparateKeys(check.keys)) {
      keys += (keys.empty() ? "`" : ", `") + key + "`";
      EXPECT_TRUE(key == "*" || schema["properties"].contains(key)) << key;
    }
    if (keys == "`*`") keys = "there is no document";
    table += std::string("| `") + check.name + "` | " + check.title + " | " + check.remedy + " | " +
             (keys.empty() ? "nothing" : keys) + " |\n";
  }
  const std::string page = ContentOf(NORVIK_SOURCE_DIR "/docs/troubleshooting.md");
  EXPECT_THAT(page, EndsWith(table));
}

TEST(ConnectionFacts, ReadTheDatesOfAllTlsLibraries) {
  EXPECT_EQ(system_clock::to_time_t(ExpiryOf("Jan  1 00:00:00 2027 GMT").value()), 1798761600);
  EXPECT_EQ(system_clock::to_time_t(ExpiryOf("2027-01-01 00:00:00 GMT").value()), 1798761600);
  EXPECT_FALSE(ExpiryOf("soon"));
}

}  // namespace
