#include "cli/commands/RedactedDocuments.h"

#include <utility>

#include "documents/FileReading.h"
#include "documents/FileRewrite.h"
#include "documents/MachineDocument.h"
#include "host/redaction/DocumentRedaction.h"
#include "host/redaction/ValueRedaction.h"

namespace Norvik::Cli {

using namespace Host;

namespace {

Documents::Document ParseMachineDocument(const Documents::NamedText& text) {
  Documents::Document document = Documents::ParseDocument(text);
  const bool isIncremental =
      document.value.is_null() || (document.value.is_object() && document.value.contains("create"));
  Documents::CheckDocument(
      document, isIncremental ? Documents::CheckIncrementalDocument : Documents::CheckFullDocument);
  return document;
}

}  // namespace

RedactedDocuments::RedactedDocuments(std::vector<Documents::NamedText> documents,
                                     const StandIns& standIns)
    : texts_(std::move(documents)), parsed_(texts_.size()), replacements_(standIns) {
  for (std::size_t at = 0; at < texts_.size(); ++at) {
    if (Documents::IsFileDocumentText(texts_[at].text)) continue;
    parsed_[at] = ParseMachineDocument(texts_[at]);
    std::string().swap(texts_[at].text);
    ProtectHarmless(parsed_[at].value, replacements_);
  }
  for (std::size_t at = 0; at < texts_.size(); ++at) {
    AddValuesOfDocument(parsed_[at].value, replacements_);
    AddUsersOfPaths(texts_[at].text, replacements_);
  }
}

std::string RedactedDocuments::Next() {
  const std::size_t at = next_++;
  if (texts_[at].text.empty()) {
    Documents::Json document = std::move(parsed_[at].value);
    RedactDocument(document, replacements_);
    return Documents::TextOf(document);
  }
  FileRedaction files(replacements_);
  return Documents::RewriteFileDocument(
      std::exchange(texts_[at], {}),
      [&](std::string& folder, Documents::Json& file) { files.Redact(folder, file); },
      [&](Documents::Json& rest) { RedactDocument(rest, replacements_); });
}

std::string RedactedDocuments::Redacted(const std::string& text) const {
  return RedactedValue(SensitiveKind::WORDS, text, replacements_);
}

}  // namespace Norvik::Cli
