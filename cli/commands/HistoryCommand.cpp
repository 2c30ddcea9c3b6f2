#include <algorithm>
#include <boost/algorithm/string/join.hpp>
#include <boost/filesystem/operations.hpp>
#include <chrono>
#include <ostream>
#include <stdexcept>

#include "cli/commands/Commands.h"
#include "cli/commands/FittedTable.h"
#include "cli/commands/HistoryStory.h"
#include "cli/commands/NearestName.h"
#include "cli/commands/Rendering.h"
#include "cli/commands/TerminalWidth.h"
#include "cli/commands/TimeArgument.h"
#include "common/text/Text.h"
#include "host/HostError.h"
#include "host/data/DataFolder.h"
#include "host/history/DocumentHistory.h"

namespace Norvik::Cli {

using namespace Host;

namespace {

using std::chrono::system_clock;

const char* KindText(DocumentKind kind) {
  return kind == DocumentKind::Files ? "file inventory" : NameOf(kind);
}

std::string ListText(const std::vector<KeptDocument>& documents, system_clock::time_point since,
                     bool json) {
  OrderedJson list = OrderedJson::array();
  std::vector<TableRow> rows = {{"time", "kind", "size", "state"}};
  for (const KeptDocument& document : documents) {
    if (document.name.time < since) continue;
    const std::string time = TimeText(document.name.time);
    list.push_back({{"time", time},
                    {"seconds", system_clock::to_time_t(document.name.time)},
                    {"kind", NameOf(document.name.kind)},
                    {"bytes", document.bytes},
                    {"state", NameOf(document.state)},
                    {"file", document.path.string()}});
    rows.push_back(
        {time, KindText(document.name.kind), SizeText(document.bytes), NameOf(document.state)});
  }
  if (json) return JsonLine(list);
  return rows.size() == 1 ? "no documents are kept for this time\n"
                          : FittedTable(rows, TerminalWidth());
}

/// Which key the documents need that did not open.
std::string ClosedText(const HistoryStory& story, const CommandLine& line) {
  const auto keys = line.keyFolder.empty() ? line.agent.dataFolder / KEY_FOLDER : line.keyFolder;
  const auto serverKey = line.agent.dataFolder / KEY_FOLDER / "server.pub";
  boost::system::error_code ignored;
  const bool ofServer = boost::filesystem::exists(serverKey, ignored);
  const std::string needed = boost::join(story.NeededKeys(), ", ");
  return std::to_string(story.Closed()) +
         (story.Closed() == 1 ? " document does" : " documents do") +
         " not open with the keys in " + keys.string() +
         (needed.empty() ? "" : "; needed: " + needed) +
         "; --keys names a folder or file with the private key" +
         (ofServer ? " of " + serverKey.string() : " that they are sealed to");
}

int TellChanges(const std::vector<KeptDocument>& documents, system_clock::time_point since,
                const CommandLine& line, std::ostream& output, std::ostream& errors) {
  HistoryStory story(line.sections.empty() ? "" : line.sections.front(), since);
  story.Tell(documents, line);
  std::vector<std::string> problems = story.Problems();
  if (story.Closed() > 0) problems.push_back(ClosedText(story, line));
  // Without any document that opens, there is no answer.
  if (problems.empty() || story.HasRead()) {
    output << (line.json ? JsonLine(story.ToJson()) : story.ToText(TerminalWidth()));
  }
  for (const auto& problem : problems) errors << MessageLine(line.json, problem) << std::flush;
  return problems.empty() ? EXIT_DONE : EXIT_FAILED;
}

}  // namespace

int RunHistory(const CommandLine& line, std::ostream& output, std::ostream& errors) {
  // The library's log would mix with the answer.
  const LoggerScope silence(std::make_shared<ListeningLogger>(nullptr, LogListener()));
  const auto since = line.since.empty()
                         ? system_clock::time_point::min()
                         : TimeOfArgument("--since", line.since, system_clock::now());
  const auto known = SectionsWithHistory();
  for (const auto& section : line.sections) {
    if (std::find(known.begin(), known.end(), section) != known.end()) continue;
    throw UsageError(UnknownName("section", section, known));
  }
  const auto folder = line.agent.dataFolder / HISTORY_FOLDER;
  if (!boost::filesystem::exists(folder)) {
    throw std::runtime_error("no document was kept yet: there is no folder " + folder.string());
  }
  UseUtf8Characters();
  const auto documents = KeptDocumentsOf(line.agent.dataFolder);
  if (line.changes) return TellChanges(documents, since, line, output, errors);
  output << ListText(documents, since, line.json);
  return EXIT_DONE;
}

}  // namespace Norvik::Cli
