#include <sys/wait.h>

#include "host/ipc/AskAgent.h"
#include "host/ipc/IpcService.h"
#include "host/ipc/IpcUser.h"
#include "host/ipc/RateLimit.h"
#include "support/LocalClient.h"
#include "support/Test.h"

namespace {

using namespace Norvik::Common;
using namespace Norvik::Host;
using namespace Norvik::Tests;

const IPCMessage TRUNCATE{1, 1066, "truncateNetDrivesTable", "x"};
const IPCMessage REQUEST{1, 1067, "requestNetworkDrives", "requestNetworkDrives"};
const std::string JOINED = EncodeFrame(FrameKind::JOIN, "");

const std::string RUN = R"({"request": "run", "code": 1071, "parameters": {}})";

const std::string SELF =
    "user " + std::to_string(::geteuid()) + ", process " + std::to_string(::getpid());

std::string FrameOf(const IPCMessage& message) {
  return EncodeFrame(FrameKind::MESSAGE, EncodeMessage(message));
}

/// The bytes of a frame in a row: the bytes themselves, a kind and its content, or a message.
std::string BytesOf(const Json& frame) {
  if (frame.is_string()) return frame.get<Bytes>();
  if (frame.size() > 2) return FrameOf({frame[0], frame[1], frame[2], frame[3].get<Bytes>()});
  return EncodeFrame(static_cast<FrameKind>(frame[0].get<std::string>()[0]), frame[1].get<Bytes>());
}

/// Received messages. While it is held, they wait to be handled.
class Inbox {
 public:
  void Add(const IPCMessage& message, std::function<void()> handled) {
    const std::lock_guard<std::mutex> lock(mutex_);
    messages_.push_back(message);
    held_ ? waiting_.push_back(std::move(handled)) : handled();
  }
  void Hold() { held_ = true; }
  void Release() {
    const std::lock_guard<std::mutex> lock(mutex_);
    held_ = false;
    for (const auto& handled : waiting_) handled();
    waiting_.clear();
  }
  std::vector<IPCMessage> Messages() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return messages_;
  }
  std::size_t Count() const { return Messages().size(); }

 private:
  mutable std::mutex mutex_;
  std::atomic<bool> held_{false};
  std::vector<IPCMessage> messages_;
  std::vector<std::function<void()>> waiting_;
};

class Ipc : public testing::Test {
 protected:
  void StartService(const ServiceLimits& limits = {}) {
    service_ = std::make_unique<IpcService>(Socket(), limits);
    service_->Start(
        {[this](const IPCMessage& message, const IpcService::Sender&,
                std::function<void()> handled) { inbox_.Add(message, std::move(handled)); },
         [this](IpcService::SessionId) { ++sessionStarts_; },
         [](const std::string& request, const std::shared_ptr<IpcConnection>& from) {
           from->Send(EncodeFrame(FrameKind::ANSWER, request + " of " + from->PeerText()));
         }});
  }
  std::unique_ptr<IpcUser> MakeUser(const ConnectionLimits& limits = LimitsOfUsersProcess()) {
    auto user = std::make_unique<IpcUser>(
        Socket(), ReconnectWaits{milliseconds(5), milliseconds(20)}, limits);
    user->Start([this](const IPCMessage& message, std::function<void()> handled) {
      userInbox_.Add(message, std::move(handled));
    });
    return user;
  }
  std::string Socket() const { return (folder_ / "agent.sock").string(); }
  TextList Warnings() const { return log_.Texts(Logger::LEVEL_WARNING); }
  bool HasSessions(std::size_t count) const {
    return Eventually([&] { return service_->GetSessions().size() == count; });
  }

  TemporaryFolder folder_;
  LogCapture log_;
  Inbox inbox_;
  Inbox userInbox_;
  std::atomic<int> sessionStarts_{0};
  std::unique_ptr<IpcService> service_;
};

TEST_F(Ipc, EachViolationIsLoggedInOneLineWithItsSenderAndHarmsNoOtherConnection) {
  ServiceLimits limits;
  limits.connection.frameTime = limits.connection.firstFrameTime = milliseconds(100);
  limits.connection.frameBytes = FrameOf(TRUNCATE).size() - 4;  // just enough, without the length
  StartService(limits);
  const LocalClient honest(Socket());
  ASSERT_TRUE(honest.Send(JOINED));
  for (const Json& row : DataOf("host/ipc/violations.json")) {
    SCOPED_TRACE(row["name"]);
    const std::size_t before = Warnings().size();
    std::string bytes;
    for (const Json& frame : row["sends"]) bytes += BytesOf(frame);
    LocalClient client(Socket());
    ASSERT_TRUE(client.Send(bytes.substr(0, row.value("cutAt", bytes.size()))));
    if (row.contains("hangsUp")) client.HangUp();
    ASSERT_TRUE(Eventually([&] { return Warnings().size() > before; }));
    EXPECT_EQ(Warnings().size(), before + 1);
    EXPECT_THAT(Warnings().back(),
                AllOf(HasSubstr(row["warning"].get<std::string>()), HasSubstr(SELF)));
  }
  EXPECT_EQ(inbox_.Count(), 0u);
  ASSERT_TRUE(honest.Send(FrameOf(TRUNCATE)));
  EXPECT_TRUE(Eventually([&] { return inbox_.Count() == 1; }));
}

TEST_F(Ipc, AUserWhoConnectsTenThousandTimesIsRefusedWithOneLine) {
  ServiceLimits limits;
  limits.connectionsInMinute = 50;
  StartService(limits);
  const auto user = MakeUser();
  ASSERT_TRUE(HasSessions(1));
  for (int i = 0; i < 10'000; ++i) {
    const LocalClient client(Socket());
    ASSERT_TRUE(client.IsConnected()) << i;
    if (i < 100) client.Send(JOINED);
  }
  ASSERT_TRUE(HasSessions(1));
  ASSERT_EQ(Warnings().size(), 1u);
  EXPECT_THAT(Warnings().front(), AllOf(HasSubstr("user " + std::to_string(::geteuid())),
                                        HasSubstr("the user opened 50 in this minute")));
  EXPECT_EQ(sessionStarts_, 1);  // at most once in a minute, however often a user joins
  EXPECT_TRUE(user->Send(TRUNCATE, IpcUser::SERVICE));
  EXPECT_TRUE(Eventually([&] { return inbox_.Count() == 1; }));
}

TEST_F(Ipc, ConnectionsThatStayOpenAreLimitedForAUserAndInAll) {
  for (const bool ofUser : {true, false}) {
    ServiceLimits limits;
    (ofUser ? limits.connectionsOfUser : limits.connections) = ofUser ? 3 : 1;
    limits.reserve = 1;  // this user is an administrator, who has it twice
    StartService(limits);
    std::vector<std::unique_ptr<LocalClient>> clients;
    for (int i = 0; i < 4; ++i) {
      clients.push_back(std::make_unique<LocalClient>(Socket()));
      clients.back()->Send(JOINED);
    }
    EXPECT_EQ(clients.back()->Receive(), "") << ofUser;
    EXPECT_TRUE(HasSessions(3)) << ofUser;
    EXPECT_THAT(Warnings().back(), HasSubstr(ofUser ? "the user has 3" : "there are 3"));
    clients.clear();
    EXPECT_TRUE(HasSessions(0)) << ofUser;
    service_.reset();
  }
}

TEST_F(Ipc, ASlowReaderIsCutOffAndTheOthersAreServed) {
  ServiceLimits limits;
  limits.connection.unsentBytes = 1 << 20;
  StartService(limits);
  const LocalClient slow(Socket());
  slow.Send(JOINED);
  ASSERT_TRUE(HasSessions(1));
  const IPCMessage large{0, 32016, "message", std::string(100'000, 'x')};
  EXPECT_TRUE(Eventually([&] { return !service_->Send(large, 1); }));
  EXPECT_TRUE(HasSessions(0));
  EXPECT_THAT(Warnings().back(), HasSubstr("reads too slowly"));
  const auto user = MakeUser();
  ASSERT_TRUE(HasSessions(1));
  // A user who reads gets more in all than may be queued.
  for (std::size_t count = 1; count <= 11; ++count) {
    EXPECT_TRUE(service_->Send(large, 2));
    EXPECT_TRUE(Eventually([&] { return userInbox_.Count() == count; }));
  }
}

TEST_F(Ipc, UnhandledMessagesMakeTheirSenderWaitAndAreNotLost) {
  StartService();
  inbox_.Hold();
  const auto user = MakeUser();
  ASSERT_TRUE(HasSessions(1));
  constexpr int COUNT = 5000;
  for (int i = 0; i < COUNT; ++i) {
    IPCMessage message = TRUNCATE;
    message.value = std::to_string(i);
    ASSERT_TRUE(user->Send(message, IpcUser::SERVICE));
  }
  ASSERT_TRUE(Eventually([&] { return inbox_.Count() > 0; }));
  const LocalClient other(Socket());
  ASSERT_TRUE(other.Send(JOINED));
  ASSERT_TRUE(HasSessions(2));
  EXPECT_EQ(inbox_.Count(), 1u);
  EXPECT_TRUE(Eventually([&] {
    inbox_.Release();
    return inbox_.Count() == COUNT;
  }));
  int expected = 0;
  for (const auto& message : inbox_.Messages()) {
    ASSERT_EQ(message.value, std::to_string(expected++));
  }
}

TEST_F(Ipc, AUserWhoShowsLargeMessagesSlowlyGetsThemAllAndReconnects) {
  ConnectionLimits limits;
  limits.waitingBytes = 1000;
  userInbox_.Hold();
  const auto user = MakeUser(limits);
  StartService();
  ASSERT_TRUE(HasSessions(1));
  constexpr std::size_t COUNT = 10;
  const IPCMessage large{0, 32016, "message", std::string(300'000, 'x')};
  for (std::size_t i = 0; i < COUNT; ++i) ASSERT_TRUE(service_->Send(large, 1));
  EXPECT_TRUE(Eventually([&] { return userInbox_.Count() == 1; }));
  service_->WaitForReaders(large.value.size(), milliseconds(50));
  EXPECT_EQ(userInbox_.Count(), 1u);
  EXPECT_TRUE(Eventually([&] {
    userInbox_.Release();
    return userInbox_.Count() == COUNT;
  }));
  service_.reset();
  StartService();
  EXPECT_TRUE(HasSessions(1));
}

TEST_F(Ipc, TheMemoryOfAUserIsLimitedAndReturned) {
  ServiceLimits limits;
  limits.memoryOfAdministrator = 200 << 10;
  StartService(limits);
  const std::string part = FrameOf({1, 32001, "getNetworkDrives", std::string(60'000, 'x')});
  for (int round = 0; round < 3; ++round) {
    std::vector<std::unique_ptr<LocalClient>> clients;
    for (int i = 0; i < 3; ++i) {
      clients.push_back(std::make_unique<LocalClient>(Socket()));
      clients.back()->Send(JOINED + part.substr(0, 50'000));
    }
    EXPECT_TRUE(Eventually([&] { return Warnings().size() > static_cast<std::size_t>(round); }));
    EXPECT_THAT(Warnings().back(), HasSubstr("exceeds the limit of 200 KiB of memory of one user"));
    EXPECT_TRUE(HasSessions(2));
    service_->Stop();
    service_.reset();
    StartService(limits);
  }
}

TEST(MemoryLimit, AllUsersTogetherHaveALimitToo) {
  const auto all = std::make_shared<MemoryLimit>(100 << 10, "of all", nullptr);
  const auto make = [&] { return std::make_shared<MemoryLimit>(70 << 10, "of one", all); };
  MemoryShare first(make());
  MemoryShare second(make());
  EXPECT_EQ(first.Resize(71 << 10), "the limit of 70 KiB of memory of one");
  EXPECT_EQ(first.Resize(60 << 10), "");
  EXPECT_EQ(second.Resize(50 << 10), "the limit of 100 KiB of memory of all");
  EXPECT_EQ(first.Resize(20 << 10), "");
  EXPECT_EQ(second.Resize(70 << 10), "");
}

TEST_F(Ipc, AUserReconnectsToTheServiceAndAcceptsOnlyAllowedMessages) {
  const auto user = MakeUser();
  EXPECT_FALSE(user->Send(TRUNCATE, IpcUser::SERVICE));
  for (const std::size_t round : {1u, 2u}) {
    StartService();
    ASSERT_TRUE(HasSessions(1)) << round;
    const auto session = *service_->GetSessions().begin();
    EXPECT_EQ(session.second.processId, std::to_string(::getpid()));
    EXPECT_FALSE(service_->Send(REQUEST, session.first + 1));
    EXPECT_TRUE(service_->Send({0, 1013, "RunProcess", "rm"}, session.first));
    EXPECT_TRUE(service_->Send(REQUEST, session.first));
    EXPECT_TRUE(Eventually([&] { return user->Send(TRUNCATE, IpcUser::SERVICE); }));
    EXPECT_FALSE(user->Send(TRUNCATE, 7));
    EXPECT_TRUE(Eventually([&] { return inbox_.Count() == round && userInbox_.Count() == round; }));
    EXPECT_EQ(userInbox_.Messages().back().value, REQUEST.value);
    EXPECT_EQ(inbox_.Messages().back().kind, 1);
    service_.reset();
  }
}

TEST_F(Ipc, OneAgentServesASocketAndTheSocketOfADeadOneIsReplaced) {
  StartService();
  EXPECT_THROW(IpcService{Socket()}, std::runtime_error);
  EXPECT_EQ(AskAgent(Socket(), "\"x\""), "\"x\" of " + SELF);
  const auto left = folder_ / "left";
  fs::rename(Socket(), left);  // as after a kill, which leaves the socket
  service_.reset();
  fs::rename(left, Socket());
  const auto runs = [&] {
    try {
      AskAgent(Socket(), "x", milliseconds(100));
    } catch (const NoAnswer& silence) {
      return silence.Runs();
    }
    return false;
  };
  EXPECT_FALSE(runs());
  service_ = std::make_unique<IpcService>(Socket());  // accepts nothing yet
  EXPECT_TRUE(runs());
  service_.reset();
  StartService();
  AskAgent(Socket(), "x");
  service_.reset();
  EXPECT_FALSE(fs::exists(Socket()));
  EXPECT_THROW(IpcService{folder_ / std::string(120, 'x')}, std::runtime_error);
}

TEST_F(Ipc, AnAnswerOfAnyLengthComesInBoundedFramesAfterItsEvents) {
  const std::string large(70 << 20, 'x');  // more than the service may keep for the connection
  std::thread sender;
  IpcService service(Socket());
  service.Start({{}, {}, [&](const std::string&, const std::shared_ptr<IpcConnection>& from) {
                   sender = std::thread([&large, from] {
                     from->SendWhole(FrameKind::EVENTS, "[1]");
                     std::this_thread::sleep_for(milliseconds(200));
                     from->SendWhole(FrameKind::EVENTS, "[" + std::string(2 << 20, '2') + "]");
                     from->SendWhole(FrameKind::ANSWER, large);
                   });
                 }});
  std::vector<std::size_t> events;
  const auto note = [&](const std::string& text) { events.push_back(text.size()); };
  // The limit is that of the first events only.
  EXPECT_TRUE(AskAgent(Socket(), RUN, milliseconds(100), note) == large);
  EXPECT_THAT(events, ElementsAre(3u, (2u << 20) + 2));
  sender.join();
  EXPECT_TRUE(Warnings().empty());
  EXPECT_THROW(AskAgent(Socket(), std::string(1 << 20, 'x')), std::runtime_error);
}

TEST_F(Ipc, ARequestOfAnotherUserIsRefused) {
  StartService();
  fs::permissions(folder_.Path(), fs::all_all);
  const bool canChange = ::geteuid() == 0;
  const pid_t child = ::fork();
  if (child == 0) {
    if (canChange && ::setuid(65534) != 0) ::_exit(2);
    const LocalClient client(Socket());
    const bool sent = client.Send(EncodeFrame(FrameKind::REQUEST, RUN));
    ::_exit(sent && client.Receive().empty() ? 0 : 1);
  }
  int status = 0;
  ::waitpid(child, &status, 0);
  // Without the right to change the user, the test can only show that its own user is served.
  EXPECT_EQ(WEXITSTATUS(status), canChange ? 0 : 1);
  const std::string refusal = "The process of user 65534, process " + std::to_string(child) +
                              " sent a request, which only root and the user of the service may; "
                              "the connection is closed";
  const TextList refusals(canChange ? 1 : 0, refusal);
  // The connection ends shortly before the log says why.
  EXPECT_TRUE(Eventually([&] { return Warnings() == refusals; })) << Warnings().size();
}

TEST(ServiceLimits, LeaveDescriptorsForTheAgentItself) {
  for (const std::size_t descriptors : {64u, 256u, 1024u, 20'000u}) {
    const ServiceLimits limits = LimitsFor(descriptors);
    EXPECT_LE(limits.connections + 2 * limits.reserve, descriptors / 2);
    EXPECT_EQ(limits.connections, std::min<std::size_t>(descriptors / 4, 256));
  }
}

TEST(RateLimit, TheFirstRefusalOfEachSpanIsMarked) {
  using Verdict = RateLimit::Verdict;
  RateLimit limit(2, seconds(60));
  std::string seen;
  for (const int second : {0, 10, 20, 30, 59, 60, 61, 62, 63, 200}) {
    const auto verdict = limit.Ask(RateLimit::TimePoint(seconds(1000 + second)));
    seen += verdict == Verdict::ALLOWED ? 'a' : verdict == Verdict::FIRST_REFUSED ? 'F' : 'r';
  }
  EXPECT_EQ(seen, "aaFrraaFra");
}

}  // namespace
