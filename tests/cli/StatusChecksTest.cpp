#include "cli/commands/StatusChecks.h"

#include "cli/commands/Commands.h"
#include "support/Test.h"

namespace {

using namespace Norvik::Cli;
using namespace Norvik::Tests;

/// The checks that find something 100,000 seconds after the epoch, in a status with these values.
TextList ChecksOf(const Json& values) {
  OrderedJson status = OrderedJson::parse(R"({
      "problems": [], "deliveryProblem": "", "server": "a.example", "configuredAt": 0,
      "contact": {"last": {"seconds": 99999}, "failed": null, "refused": {}},
      "waiting": {"documents": {"count": 0}, "states": {"count": 0}, "answers": {"count": 0}},
      "disk": {"freeBytes": 900000000, "bytes": 1000000000}, "periodic": []})");
  status.merge_patch(OrderedJson::parse(values.dump()));
  TextList checks;
  for (const auto& found : AttentionOf(status, system_clock::from_time_t(100'000))) {
    EXPECT_NE(found["text"], "");
    checks.push_back(found["check"]);
  }
  return checks;
}

TEST(StatusChecks, SayWhatNeedsAPerson) { ExpectRows(DataOf("cli/status-checks.json"), ChecksOf); }

}  // namespace
