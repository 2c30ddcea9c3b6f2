#include "cli/commands/HistoryStory.h"

#include <exception>
#include <utility>

#include "cli/commands/ChangeJson.h"
#include "cli/commands/DocumentFile.h"
#include "cli/commands/FittedTable.h"
#include "cli/commands/SectionText.h"
#include "common/files/SealedStart.h"
#include "common/text/Text.h"
#include "documents/DocumentError.h"
#include "documents/SectionKeys.h"
#include "host/HostError.h"

namespace Norvik::Cli {

using namespace Host;

namespace {

using Documents::FILE_SECTION;
using Documents::RecordChange;

/// Section, record, and what became of it: "came", "went" or "version: 13.2 -> 14.0".
void AddRows(const OrderedJson& change, std::vector<TableRow>& rows) {
  const TableRow begin = {change["section"], NameOfRecord(change)};
  const auto add = [&](const OrderedJson& text) {
    rows.push_back(begin);
    rows.back().push_back(text);
  };
  if (!change.contains("properties")) return add(change["change"]);
  for (const OrderedJson& each : change["properties"]) {
    const std::string property = each["property"];
    const auto valueOf = [&](const char* key) {
      if (!each.contains(key)) return std::string("?");
      const std::string text = CellText(ReadableValue(property, each[key]));
      return text.empty() ? std::string("nothing") : text;
    };
    add(property + ": " + valueOf("from") + " -> " + valueOf("to"));
  }
}

/// What is not known about a document; or empty.
std::string NoteOf(const OrderedJson& document) {
  if (document["baseKnown"]) return "";
  if (document["kind"] == "full") return " the first document, nothing to compare with";
  const std::string misfit = document["misfit"];
  return " the document before it is missing, so former values are not known" +
         (misfit.empty() ? "" : " (" + Common::EscapeControls(misfit) + ")");
}

}  // namespace

std::vector<std::string> SectionsWithHistory() {
  std::vector<std::string> keys = Documents::SectionKeys();
  keys.emplace_back(FILE_SECTION);
  return keys;
}

bool HistoryStory::IsWanted(const KeptDocument& document) const {
  return section_.empty() ||
         (section_ == FILE_SECTION) == (document.name.kind == DocumentKind::Files);
}

void HistoryStory::Tell(const std::vector<KeptDocument>& documents, const CommandLine& line) {
  Documents::DocumentChain ofMachine;
  Documents::DocumentChain ofFiles;
  for (const KeptDocument& document : documents) {
    if (!IsWanted(document)) continue;
    auto& chain = document.name.kind == DocumentKind::Files ? ofFiles : ofMachine;
    const bool isSealed = IsSealed(document.path);
    try {
      const std::string text = ReadDocument(document.path, line);
      TellOne(document, text, chain);
    } catch (const Documents::DocumentError& error) {
      problems_.emplace_back(error.what());
    } catch (const std::exception& error) {
      chain.Break();
      if (isSealed) {
        NoteClosed(document.path);
      } else {
        problems_.push_back(ReasonOf(error));
      }
    }
  }
}

void HistoryStory::NoteClosed(const boost::filesystem::path& file) {
  ++closed_;
  try {
    const Common::SealedStart start = Common::SealedStartOf(file);
    if (start.NamesKey()) neededKeys_.insert(Common::FingerprintOf(start.key));
  } catch (const std::exception&) {
    // It names no key.
  }
}

void HistoryStory::TellOne(const KeptDocument& document, const std::string& text,
                           Documents::DocumentChain& chain) {
  const auto step = chain.Follow({document.path.string(), text});
  hasRead_ = true;
  if (document.name.time < since_) return;
  OrderedJson changes = OrderedJson::array();
  for (const RecordChange& change : step.changes) {
    if (section_.empty() || section_ == change.section) changes.push_back(Cli::ToJson(change));
  }
  told_.push_back({{"time", TimeText(document.name.time)},
                   {"kind", step.incremental ? "incremental" : "full"},
                   {"inventory", document.name.kind == DocumentKind::Files ? "files" : "machine"},
                   {"file", document.path.string()},
                   {"baseKnown", step.baseKnown},
                   {"misfit", step.misfit},
                   {"changes", std::move(changes)}});
}

std::string HistoryStory::ToText(std::size_t width) const {
  std::string text;
  for (const OrderedJson& document : told_) {
    std::vector<TableRow> rows;
    for (const OrderedJson& change : document["changes"]) AddRows(change, rows);
    const std::string note = NoteOf(document);
    if (rows.empty() && note.empty()) continue;
    text += (text.empty() ? "" : "\n") + document["time"].get<std::string>() + " " +
            document["kind"].get<std::string>() + ":" + note + "\n" + FittedTable(rows, width);
  }
  return text.empty() ? "no changes\n" : text;
}

}  // namespace Norvik::Cli
