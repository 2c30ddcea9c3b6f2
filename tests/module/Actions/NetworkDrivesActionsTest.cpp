#include "module/Actions/NetworkDrivesActions.h"

#include "common/text/Text.h"
#include "module/ModuleUnderTest.h"
#include "module/NetworkDrivesHandler/TextArchive.h"

namespace Norvik::KOB {
namespace {

using namespace Tests;
using Messages = decltype(FakeCommunications::sent);
using Drives = std::vector<NetworkDriveInfo>;

NetworkDriveInfo Drive(const std::string& unit, const std::string& path,
                       const std::string& server = "files") {
  NetworkDriveInfo drive;
  drive.unit = unit;
  drive.path = path;
  drive.server = server;
  return drive;
}

/// One of the two processes of the exchange.
struct Side {
  explicit Side(int kind, boost::optional<Drives> drives = Drives()) : host(kind) {
    actions = std::make_unique<NetworkDrivesActions>(
        host.Dependencies(),
        [](unsigned int, const Common::ActionParameters&) { return Common::ModuleAction(); },
        handlers, [drives] { return drives; });
  }
  void Run(unsigned int code, const std::string& key = "", const std::string& value = "") {
    auto parameters = WithText(key, Common::WxStringFromStdString(value));
    handlers.at(code)(parameters);
  }
  void Receive(const Messages& messages) {
    for (const auto& [session, message] : messages) Run(message.code, message.key, message.value);
  }

  FakeHost host;
  Common::HandlerMap handlers;
  std::unique_ptr<NetworkDrivesActions> actions;
};

/// What a user with these drives sends when the service asks.
Messages MessagesOf(const Drives& drives) {
  Side user(1, drives);
  user.Run(1067, "requestNetworkDrives", "requestNetworkDrives");
  for (const auto& [session, message] : user.host.communications->sent) EXPECT_EQ(session, 0U);
  return user.host.communications->sent;
}

TextList Stored() {
  TextList texts;
  const Drives drives = NetworkDrivesHandler::GetFromDb().get_value_or({});
  for (const auto& drive : drives) {
    texts.push_back(drive.unit + " " + drive.path + " " + drive.server);
  }
  std::sort(texts.begin(), texts.end());
  return texts;
}

TEST(NetworkDrivesActions, ARoundReplacesTheTableByTheUsersDrives) {
  const Json& rows = DataOf("module/Actions/NetworkDrivesActions.json");
  std::vector<Messages> rounds;
  for (const Json& row : rows) {
    Drives drives;
    for (const Json& drive : row["drives"]) drives.push_back(Drive(drive[0], drive[1], drive[2]));
    const tests::CommaLocale comma;
    rounds.push_back(MessagesOf(drives));
  }
  Side service(0);
  for (std::size_t i = 0; i < rounds.size(); ++i) {
    EXPECT_THAT(rounds[i], SizeIs(1 + rows[i]["drives"].size())) << rows[i]["name"];
    service.Receive(rounds[i]);
    EXPECT_EQ(Stored(), rows[i]["stored"].get<TextList>()) << rows[i]["name"];
  }
  EXPECT_THAT(service.host.log.Texts(2), IsEmpty());
}

TEST(NetworkDrivesActions, AnArchiveThatDoesNotParseStoresNothing) {
  NetworkDriveInfo drive = Drive("unit", "//server/path", "server");
  drive.id = 18446744073709551615U;
  const std::string whole = Serialize(drive);
  EXPECT_THAT(whole, EndsWith(" 18446744073709551615 4 unit 13 //server/path 6 server\n"));
  EXPECT_EQ(Deserialize<NetworkDriveInfo>(whole).id, drive.id);
  TextList archives = {"garbage", "22 serialization::archive 99 0 0 1 0  0  0 ",
                       "22 serialization::archive 19 0 9 1 0  0  0 "};
  const std::string start = whole.substr(0, whole.find("4 unit"));
  for (const char* length : {"5000000000", "18446744073709551615", "99999999999999999999", "-1"}) {
    archives.push_back(start + length + " unit");
  }
  // The archive ends with a line end that the reader does not need.
  for (std::size_t cut = 0; cut + 1 < whole.size(); ++cut) archives.push_back(whole.substr(0, cut));
  Side service(0);
  for (const auto& archive : archives) service.Run(32001, "getNetworkDrives", archive);
  EXPECT_THAT(service.host.log.Texts(2), SizeIs(archives.size()));
  EXPECT_THAT(service.host.log.Texts(2),
              Each(StartsWith("Can not deserialize NetworkDriveInfo: ")));
  EXPECT_THAT(Stored(), IsEmpty());
}

TEST(NetworkDrivesActions, AFailedMessageIsLoggedAndTheNextDriveIsSent) {
  Side user(1, Drives{Drive("a", "//s/a"), Drive("b", "//s/b")});
  user.host.communications->accepts = false;
  user.host.communications->onNextSend = [] { throw std::runtime_error("pipe"); };
  user.Run(32001);
  user.host.communications.reset();
  user.Run(32001);
  const char* const gone = "Sending IPC message : bad_weak_ptr";
  EXPECT_THAT(user.host.log.Texts(2),
              ElementsAre("Sending IPC message : pipe", "IPC Message NOT sent",
                          "IPC Message NOT sent", gone, gone, gone));
}

TEST(NetworkDrivesActions, NothingIsClearedWithoutAListOfDrives) {
  Side user(1, boost::none);
  user.Run(1067, "requestNetworkDrives");
  EXPECT_THAT(user.host.communications->sent, IsEmpty());
  EXPECT_THAT(user.host.actions->Texts(), ElementsAre("once 1065 +0"));
}

TEST(NetworkDrivesActions, AStoreThatFailsIsLoggedByWhatItDid) {
  Side service(0);
  TestDatabase::Run("drop table KOB_NETWORK_DRIVES");
  EXPECT_FALSE(NetworkDrivesHandler::Save(Drive("a", "//s/a")));
  EXPECT_FALSE(NetworkDrivesHandler::GetFromDb());
  service.Run(1066, "truncateNetDrivesTable");
  const auto create = StartsWith("Error Create Network Drives Table: ");
  EXPECT_THAT(service.host.log.Texts(2),
              ElementsAre(create, create, StartsWith("Error Truncate Network Drives Table: ")));
}

}  // namespace
}  // namespace Norvik::KOB
