#include <sys/utsname.h>

#include <ostream>

#include "cli/commands/Commands.h"
#include "cli/why/Explanation.h"
#include "cli/why/LedgerView.h"
#include "cli/why/SourceState.h"
#include "cli/why/WhyText.h"
#include "host/assembly/ListeningLogger.h"
#include "platform/RecordedMachine.h"

namespace Norvik::Cli {

using namespace Host;

namespace {

constexpr std::size_t MOST_COSTLY = 5;

bool IsMac() {
  if (Platform::IsMachineRecorded()) return true;
  utsname system{};
  return ::uname(&system) == 0 && std::string(system.sysname) == "Darwin";
}

OrderedJson Answer(const Explanation& explained, const Ledger& ledger) {
  OrderedJson asked = OrderedJson::array();
  for (const auto& source : explained.asked) asked.push_back(StateOf(source));
  return {{"key", explained.key},
          {"description", explained.description},
          {"filled", explained.filled},
          {"source", explained.source},
          {"asked", asked},
          {"permission", PermissionOf(explained.needs)},
          {"last", LastOf(explained.section, ledger)},
          {"trouble", TroubleOf(explained.section, ledger)},
          {"emptyOrOdd", explained.emptyOrOdd},
          {"notes", explained.notes}};
}

}  // namespace

int RunWhy(const CommandLine& line, std::ostream& output, std::ostream&) {
  const LoggerScope silence(std::make_shared<ListeningLogger>(nullptr, LogListener()));
  const bool ofMac = IsMac();
  const auto keys = line.what.empty() ? SectionKeys() : std::vector<std::string>{line.what};
  std::vector<Explanation> explanations;
  for (const auto& key : keys) explanations.push_back(ExplainKey(key, ofMac));
  const Ledger ledger = ReadLedger(line.agent.dataFolder);
  OrderedJson answers = OrderedJson::array();
  for (const auto& explained : explanations) answers.push_back(Answer(explained, ledger));
  const OrderedJson costs = {{"runs", ledger.runs.size()},
                             {"problem", ledger.problem},
                             {"costliest", CostliestOf(ledger, MOST_COSTLY)}};
  if (line.json) {
    output << JsonLine({{"keys", answers}, {"ledger", costs}});
  } else {
    output << (line.what.empty() ? SectionsText(answers) : KeyText(answers[0]))
           << LedgerText(costs);
  }
  return EXIT_DONE;
}

}  // namespace Norvik::Cli
