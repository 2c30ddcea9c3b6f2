#include <algorithm>
#include <chrono>
#include <exception>
#include <ostream>
#include <stdexcept>
#include <utility>

#include "cli/commands/Commands.h"
#include "cli/commands/DocumentFile.h"
#include "cli/commands/LiveDocument.h"
#include "cli/commands/NearestName.h"
#include "cli/commands/Rendering.h"
#include "cli/commands/SectionText.h"
#include "cli/commands/TerminalWidth.h"
#include "common/text/MaskedDocument.h"
#include "common/text/Text.h"
#include "documents/DocumentText.h"
#include "host/HostError.h"
#include "host/history/KeptDocuments.h"

namespace Norvik::Cli {

using namespace Host;

namespace {

using Documents::Json;

/// A document to show, and what it is.
struct Shown {
  Documents::NamedText text;
  std::string title;  ///< follows "inventory of TIME, "
};

/// The last full document also holds what incremental ones have told since the last full one.
bool LastWasIncremental(const boost::filesystem::path& dataFolder) {
  bool incremental = false;
  try {
    for (const KeptDocument& document : KeptDocumentsOf(dataFolder)) {
      if (document.name.kind == DocumentKind::Files) continue;
      incremental = document.name.kind == DocumentKind::Incremental;
    }
  } catch (const std::exception&) {
    // The title only says less.
  }
  return incremental;
}

Shown LastDocument(const CommandLine& line) {
  const auto folder = line.agent.dataFolder / "previous";
  const auto file = LastDocumentIn(folder);
  if (file.empty()) {
    throw std::runtime_error("no inventory was taken with the data folder " +
                             line.agent.dataFolder.string() +
                             "; --data names another one, --live takes one now");
  }
  const char* const sent = LastWasIncremental(line.agent.dataFolder)
                               ? "the last one; it was sent as an incremental document"
                               : "the last one";
  return {{file.string(), ReadDocument(file, line)}, sent};
}

Shown DocumentToShow(const CommandLine& line, std::ostream& errors) {
  if (line.live) return {{"the new inventory", TakeLiveDocument(line, errors)}, "taken now"};
  // The library's log would mix with the answer.
  const LoggerScope silence(std::make_shared<ListeningLogger>(nullptr, LogListener()));
  if (line.file.empty()) return LastDocument(line);
  return {{line.file.string(), ReadDocument(line.file, line)}, "in " + line.file.string()};
}

/// The sections that are wanted, in the wanted order; all of them if none is named.
std::vector<std::string> WantedSections(const std::vector<std::string>& wanted,
                                        const Json& document) {
  std::vector<std::string> keys;
  for (const auto& item : document.items()) keys.push_back(item.key());
  for (const std::string& key : wanted) {
    if (!document.contains(key)) throw UsageError(UnknownName("section", key, keys));
  }
  return wanted.empty() ? keys : wanted;
}

std::string ListText(const std::vector<std::string>& keys, const Json& document, bool json) {
  OrderedJson list = OrderedJson::array();
  std::vector<std::vector<OrderedJson>> rows = {{"section", "records"}};
  for (const std::string& key : keys) {
    const Json& value = document[key];
    const bool isOne = !value.is_array() && !value.is_null();
    const std::size_t records = isOne ? 1 : value.size();
    list.push_back({{"section", Common::MaskedDocument::Unmask(key)}, {"records", records}});
    rows.push_back({key, isOne ? "one record" : std::to_string(records)});
  }
  return json ? JsonLine(list) : TableText(rows);
}

std::string TimeOf(const Json& document) {
  const Json device = document.value("device", Json());
  const Json time = device.is_object() ? device.value("assetDate", Json()) : device;
  const OrderedJson text = ReadableValue("assetDate", time);
  return time.is_number_integer() && text.is_string() ? " of " + text.get<std::string>() : "";
}

std::string Tables(const Shown& shown, const std::vector<std::string>& keys, const Json& document) {
  const std::size_t width = TerminalWidth();
  std::string text = "inventory" + TimeOf(document) + ", " +
                     Common::EscapeControls(Common::OnOneLine(shown.title)) + "\n";
  for (const std::string& key : keys) text += "\n" + SectionText(key, document[key], width);
  return text;
}

}  // namespace

int RunShow(const CommandLine& line, std::ostream& output, std::ostream& errors) {
  if (line.csv && (line.json || line.sections.size() != 1)) {
    throw UsageError("--csv wants one section, and no --json");
  }
  const Shown shown = DocumentToShow(line, errors);
  // Read as written, so that the JSON is that of the document.
  const bool exact = line.json && !line.list;
  const Json document = Documents::ParseDocument(
                            shown.text, exact ? Documents::Escapes::Kept : Documents::Escapes::Read)
                            .value;
  if (!document.is_object()) throw std::runtime_error(shown.text.name + " has no sections");
  const auto keys = WantedSections(line.sections, document);
  if (line.list) {
    output << ListText(keys, document, line.json);
  } else if (line.json) {
    Json chosen = Json::object();
    for (const std::string& key : keys) chosen[key] = document[key];
    output << Documents::TextOf(chosen) << "\n";
  } else if (line.csv) {
    output << SectionCsv(keys.front(), document[keys.front()]);
  } else {
    output << Tables(shown, keys, document);
  }
  return EXIT_DONE;
}

}  // namespace Norvik::Cli
