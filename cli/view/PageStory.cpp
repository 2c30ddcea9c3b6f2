#include "cli/view/PageStory.h"

#include <chrono>
#include <utility>

#include "cli/commands/ChangeJson.h"
#include "common/text/MaskedDocument.h"
#include "common/text/Text.h"

namespace Norvik::Cli {

namespace {

using Step = Documents::DocumentChain::Step;

/// A change as the page has it.
OrderedJson PageChange(const Documents::RecordChange& change) {
  static constexpr const char* KINDS[] = {"created", "removed", "changed"};
  OrderedJson json = ToJson(change);
  OrderedJson page = {
      {"section", change.section}, {"change", KINDS[change.kind]}, {"record", NameOfRecord(json)}};
  for (OrderedJson& property : json["properties"]) {
    OrderedJson field = {{"key", property["property"]}};
    if (property.contains("from")) field["before"] = property["from"];
    field["after"] = property["to"];
    page["fields"].push_back(std::move(field));
  }
  return page;
}

std::string DayOf(const ViewedDocument& document) {
  const std::chrono::system_clock::time_point time{std::chrono::milliseconds(document.time)};
  return document.time == 0 ? "" : Host::TimeText(time).substr(0, 10);
}

}  // namespace

PageStory::PageStory(std::vector<ViewedDocument> documents) : documents_(std::move(documents)) {
  for (const ViewedDocument& document : documents_) {
    ++(document.isFiles ? files_ : machine_).count;
    if (document.time == 0) notes_.push_back(document.name + " does not say when it was made");
  }
  const std::size_t given = documents_.size();
  for (std::size_t at = 0; at < given; ++at) {
    Follow(at, documents_[at].isFiles ? files_ : machine_);
  }
  Finish(machine_);
  Finish(files_);
}

void PageStory::Follow(std::size_t at, Chain& chain) {
  const ViewedDocument& document = documents_[at];
  const bool isAlone = chain.count == 1 && !document.isIncremental;
  // A single full document has no change, and may be too large to be parsed for it.
  const Step step = isAlone ? Step() : chain.documents.Follow({document.name, document.text});
  NoteGap(at, step, chain);
  AddChanges(at, step, chain);
  chain.last = at;
  if (!document.isIncremental) {
    chain.current = at;
    chain.applied.reset();
  } else if (step.baseKnown) {
    chain.applied = document;
    chain.applied->text = chain.documents.State().text;
  }
}

void PageStory::NoteGap(std::size_t at, const Step& step, Chain& chain) {
  const ViewedDocument& document = documents_[at];
  if (!document.isIncremental || step.baseKnown) {
    chain.isBroken = false;
    return;
  }
  // Those that follow have no base for the same reason.
  if (std::exchange(chain.isBroken, true)) return;
  const std::string begin =
      step.misfit.empty()
          ? document.name + " changes a document that is not here"
          : "a document before " + document.name + " is missing (" +
                Common::EncodeUtf8Characters(Common::MaskedDocument::Unmask(step.misfit)) + ")";
  notes_.push_back(begin + "; what was before is not known until the next full one");
}

void PageStory::AddChanges(std::size_t at, const Step& step, const Chain& chain) {
  const ViewedDocument& document = documents_[at];
  for (const Documents::RecordChange& change : step.changes) {
    OrderedJson json = {
        {"time", document.Seconds()}, {"day", DayOf(document)}, {"from", nullptr}, {"to", at}};
    if (step.baseKnown) json["from"] = *chain.last;
    json.update(PageChange(change));
    changes_ += (changes_.empty() ? "" : ",\n") + json.dump();
    ++changeCount_;
  }
}

void PageStory::Finish(Chain& chain) {
  if (chain.isBroken && chain.current) {
    notes_.push_back("the state after " + documents_[*chain.last].name +
                     " is not known; an earlier one is shown as the last");
  }
  if (!chain.applied) return;
  ViewedDocument& applied = *chain.applied;
  applied.name = "the state after " + applied.name;
  applied.isApplied = true;
  chain.current = documents_.size();
  documents_.push_back(std::move(applied));
}

}  // namespace Norvik::Cli
