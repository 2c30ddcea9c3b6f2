#include "host/server/ServerContact.h"

#include "host/server/Attempt.h"
#include "support/FakeActionClock.h"
#include "support/Test.h"

namespace {

using namespace Norvik::Host;
using namespace Norvik::Tests;

TEST(ServerContact, IsStoredAtOnceWhenItsStateChangesAndElseOnceAMinute) {
  const auto clock = std::make_shared<FakeActionClock>(1'767'225'600);
  std::string stored;
  int count = 0;
  const auto store = [&](const std::string& text) {
    stored = text;
    ++count;
  };
  ServerContact contact("", store, clock);
  const Attempt failed{Attempt::Result::ServerFailed, "gave no\nanswer", boost::none};
  const Attempt refused{Attempt::Result::Refused, "answered 403", boost::none};
  // An attempt, the seconds after it, and how often the state was stored by then.
  const std::tuple<Attempt, int, int> rows[] = {{{}, 1, 1},      {{}, 1, 1},      {failed, 30, 2},
                                                {failed, 29, 2}, {failed, 1, 2},  {failed, 1, 3},
                                                {refused, 1, 4}, {refused, 1, 4}, {{}, 1, 5},
                                                {{}, 50, 5},     {{}, 1, 5}};
  for (const auto& [attempt, wait, wanted] : rows) {
    contact.Record("enrolment", attempt);
    contact.SetNextTry(std::chrono::nanoseconds(seconds(wait)));
    EXPECT_EQ(count, wanted);
    clock->Move(seconds(wait));
  }
  contact.Record("statuses", refused);
  contact.Record("enrolment", {});
  const ContactState state = ParseContactState(stored).value();
  EXPECT_EQ(state.error, "answered 403");
  EXPECT_EQ(state.refused, (std::map<std::string, std::string>{{"statuses", "answered 403"}}));
  EXPECT_EQ(*state.contact, clock->Now());
  contact.Flush();
  EXPECT_EQ(ToText(ServerContact(stored, store, clock).State()), stored);
  EXPECT_FALSE(ParseContactState("{}").has_value());
}

}  // namespace
