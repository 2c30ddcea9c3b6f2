#include "documents/DocumentChain.h"

#include "documents/DocumentError.h"
#include "documents/Rows.h"
#include "module/Inventories.h"

namespace {

using namespace Norvik;
using namespace Norvik::Documents;
using Tests::Altered;
using Tests::DataOf;
using Tests::MessageOf;
using Cases = Tests::Json;

/// "came software {...}", or "changed os version: "1" -> "2"", with "?" for an unknown value.
Tests::TextList LinesOf(const DocumentChain::Step& step) {
  static constexpr const char* KINDS[] = {"came ", "went ", "changed "};
  Tests::TextList lines;
  for (const RecordChange& change : step.changes) {
    const std::string begin = KINDS[change.kind] + change.section;
    const std::string identity = change.identity.is_null() ? "" : " " + TextOf(change.identity);
    if (change.kind != RecordChange::Changed) lines.push_back(begin + identity);
    for (const PropertyChange& each : change.properties) {
      lines.push_back(begin + identity + " " + each.property + ": " +
                      (change.fromKnown ? TextOf(each.from) : "?") + " -> " + TextOf(each.to));
    }
  }
  if (!step.baseKnown) lines.emplace_back("no base");
  if (!step.misfit.empty()) lines.emplace_back("misfit");
  return lines;
}

/// The cells of a row: "full", "changes", "total files", "file changes" or "missing", what is put
/// into such a document, and the lines that it gives, or a part of the reason why it gives no line.
TEST(DocumentChain, TellsWhatChangedFromOneDocumentToTheNext) {
  const tests::ScopedLocale utf8("C.UTF-8");
  const Tests::LogCapture log;
  Cases full = Cases::parse(tests::JsonText(tests::FilledInventory()));
  const Cases changes = {
      {"create", nullptr}, {"delete", nullptr}, {"update", nullptr}, {"device", full["device"]}};
  Cases files = {{"device", full["device"]}, {"paths", Cases::array()}, {"typeInventory", 0}};
  Cases fileChanges = files;
  fileChanges["typeInventory"] = 1;
  const std::map<std::string, Cases> documents = {
      {"full", full}, {"changes", changes}, {"total files", files}, {"file changes", fileChanges}};
  for (const auto& [name, rows] : DataOf("documents/document-chains.json").items()) {
    SCOPED_TRACE(name);
    DocumentChain chain;
    for (const Cases& row : rows) {
      if (row[0] == "missing") {
        chain.Break();
        continue;
      }
      DocumentChain::Step step;
      const std::string reason = MessageOf<DocumentError>([&] {
        step = chain.Follow({"document", Altered(documents.at(row[0]), row[1])});
      });
      if (row[2].is_string()) {
        EXPECT_THAT(reason, testing::HasSubstr(row[2].get<std::string>())) << row;
      } else {
        EXPECT_EQ(Cases(LinesOf(step)), row[2]) << row << reason;
      }
    }
  }
}

}  // namespace
