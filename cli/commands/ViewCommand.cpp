#include <algorithm>
#include <boost/filesystem/operations.hpp>
#include <chrono>
#include <cstddef>
#include <optional>
#include <ostream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "cli/commands/Commands.h"
#include "cli/commands/DocumentFile.h"
#include "cli/commands/LiveDocument.h"
#include "cli/commands/RedactedDocuments.h"
#include "cli/commands/Rendering.h"
#include "cli/view/PageFile.h"
#include "cli/view/PageSchema.h"
#include "cli/view/PageStory.h"
#include "cli/view/PageText.h"
#include "cli/view/SystemOpener.h"
#include "common/identification/HostInfoProvider.h"
#include "common/text/Text.h"
#include "host/HostError.h"
#include "host/redaction/StandIns.h"

namespace Norvik::Cli {

using namespace Host;

namespace {

namespace fs = boost::filesystem;
using Viewed = std::vector<ViewedDocument>;

std::vector<fs::path> FilesToView(const CommandLine& line) {
  if (!line.files.empty()) return line.files;
  const fs::path last = LastDocumentIn(line.agent.dataFolder / "previous");
  if (!last.empty()) return {last};
  throw std::runtime_error("no inventory was taken with the data folder " +
                           line.agent.dataFolder.string() +
                           "; --data names another one, or name the documents");
}

/// In their order.
Viewed ReadDocuments(const std::vector<fs::path>& files, const CommandLine& line) {
  Viewed documents;
  for (const fs::path& file : files) {
    documents.push_back(ViewedDocumentOf(file, ReadDocument(file, line)));
  }
  CheckOneMachine(documents);
  PutInOrder(documents);
  return documents;
}

Viewed Redacted(Viewed documents) {
  std::vector<Documents::NamedText> texts;
  for (ViewedDocument& document : documents) {
    texts.push_back({document.file.string(), std::move(document.text)});
  }
  const StandIns standIns(StandIns::NewSecret());
  RedactedDocuments redacted(std::move(texts), standIns);
  for (ViewedDocument& document : documents) {
    const std::string name = redacted.Redacted(document.name);
    document = ViewedDocumentOf(document.file, redacted.Next());
    document.name = name;
  }
  return documents;
}

/// Of the last document that has it.
std::string LastOf(const Viewed& documents, std::string ViewedDocument::*text) {
  for (auto document = documents.rbegin(); document != documents.rend(); ++document) {
    if (!((*document).*text).empty()) return (*document).*text;
  }
  return "";
}

OrderedJson ListOf(const Viewed& documents) {
  OrderedJson list = OrderedJson::array();
  for (const ViewedDocument& document : documents) {
    const char* const given = document.isIncremental ? "incremental" : "full";
    list.push_back({{"kind", document.isFiles ? "files" : "machine"},
                    {"form", document.isApplied ? "applied" : given},
                    {"name", document.name},
                    {"time", document.Seconds()}});
  }
  return list;
}

OrderedJson IndexOf(const std::optional<std::size_t>& index) {
  return index ? OrderedJson(*index) : OrderedJson();
}

PageContent ContentOf(const PageStory& story, const OrderedJson& documents,
                      const OrderedJson& notes, bool redacted) {
  const std::string host = LastOf(story.Documents(), &ViewedDocument::host);
  const std::string machine = LastOf(story.Documents(), &ViewedDocument::machine);
  const bool ofMac = LastOf(story.Documents(), &ViewedDocument::family) != "Linux";
  OrderedJson page = {
      {"generator", "norvik-agent " + Common::GetAgentVersion()},
      {"made", TimeText(std::chrono::system_clock::now())},
      {"redacted", redacted},
      {"machine", {{"name", host}, {"guid", machine}}},
      {"documents", documents},
      {"notes", notes},
      {"current",
       {{"machine", IndexOf(story.CurrentMachine())}, {"files", IndexOf(story.CurrentFiles())}}},
      {"schema", PageSchema(ofMac)},
      {"explanations", PageExplanations(ofMac)}};
  PageContent content;
  content.title = (host.empty() ? machine : host) + " - Norvik";
  content.information = page.dump();
  content.information.back() = ',';
  content.information += "\"changes\":" + story.ChangesJson() + "}";
  for (const ViewedDocument& document : story.Documents()) {
    content.documents.push_back(&document.text);
  }
  return content;
}

/// Where the page goes.
fs::path TargetOf(const CommandLine& line, const std::vector<fs::path>& files,
                  const std::string& host) {
  fs::path target = line.outputFile.empty() ? PageNameOf(host) : line.outputFile;
  CheckOutput("--output", target);
  for (const fs::path& file : files) {
    boost::system::error_code ignored;
    if (!fs::equivalent(target, file, ignored)) continue;
    throw UsageError("--output names the document " + file.string());
  }
  return target;
}

std::string CountText(std::size_t count, const std::string& what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

std::string TextOf(const OrderedJson& report) {
  const auto isGiven = [](const OrderedJson& document) { return document["form"] != "applied"; };
  const OrderedJson& documents = report["documents"];
  const auto given = std::count_if(documents.begin(), documents.end(), isGiven);
  std::string text = "wrote " + Common::EscapeControls(report["file"]) + ": " +
                     CountText(static_cast<std::size_t>(given), "document") + ", " +
                     CountText(report["changes"], "change") + ", " + SizeText(report["bytes"]) +
                     "\n";
  for (const OrderedJson& note : report["notes"]) {
    text += "note: " + Common::EscapeControls(Common::OnOneLine(note)) + "\n";
  }
  return text;
}

}  // namespace

int RunView(const CommandLine& line, std::ostream& output, std::ostream& /*errors*/) {
  // The library's log would mix with the answer.
  const LoggerScope silence(std::make_shared<ListeningLogger>(nullptr, LogListener()));
  UseUtf8Characters();
  const std::vector<fs::path> files = FilesToView(line);
  if (!line.outputFile.empty()) TargetOf(line, files, "");
  Viewed read = ReadDocuments(files, line);
  if (line.redact) read = Redacted(std::move(read));
  // After that, since the page has the notes.
  std::vector<std::string> notes = RemoveDuplicates(read);
  const PageStory story(std::move(read));
  notes.insert(notes.end(), story.Notes().begin(), story.Notes().end());
  const OrderedJson documents = ListOf(story.Documents());
  const fs::path target = TargetOf(line, files, LastOf(story.Documents(), &ViewedDocument::host));
  const OrderedJson report = {
      {"file", target.string()},
      {"bytes", WritePage(target, ContentOf(story, documents, notes, line.redact))},
      {"redacted", line.redact},
      {"documents", documents},
      {"changes", story.Changes()},
      {"notes", notes}};
  output << (line.json ? JsonLine(report) : TextOf(report)) << std::flush;
  if (line.openPage) OpenWithSystem(target);
  return EXIT_DONE;
}

}  // namespace Norvik::Cli
