#include "documents/DocumentChain.h"

#include <utility>

#include "documents/ApplyIncrement.h"
#include "documents/Difference.h"
#include "documents/DocumentError.h"
#include "documents/FileDocument.h"
#include "documents/MachineDocument.h"

namespace Norvik::Documents {

namespace {

bool IsIncremental(const Json& document) {
  if (IsFileDocument(document)) return document["typeInventory"] == 1;
  return document.is_null() || (document.is_object() && document.contains("create"));
}

}  // namespace

DocumentChain::Step DocumentChain::Follow(const NamedText& text) {
  try {
    const Document document = ParseDocument(text, Escapes::Kept);
    const bool files = IsFileDocument(document.value);
    if (!IsIncremental(document.value)) {
      CheckDocument(document, files ? CheckFullFileDocument : CheckFullDocument);
      return FollowFull(text);
    }
    CheckDocument(document, files ? CheckIncrementalFileDocument : CheckIncrementalDocument);
    return FollowIncremental(text, document.value);
  } catch (const DocumentError&) {
    Break();
    throw;
  }
}

DocumentChain::Step DocumentChain::FollowFull(const NamedText& text) {
  const NamedText before = std::exchange(state_, text);
  Step step;
  step.baseKnown = !before.text.empty();
  if (!step.baseKnown) return step;
  const Document changes = ParseDocument({text.name, DifferenceOf(before, text)}, Escapes::Kept);
  step.changes = ChangesOf(changes.value, ParseDocument(before, Escapes::Kept).value);
  return step;
}

DocumentChain::Step DocumentChain::FollowIncremental(const NamedText& text, const Json& changes) {
  Step step;
  step.incremental = true;
  if (state_.text.empty()) {
    step.changes = ChangesOf(changes, {});
    return step;
  }
  try {
    const Json before = ParseDocument(state_, Escapes::Kept).value;
    state_ = {text.name, ApplyIncrement(state_, text)};
    step.baseKnown = true;
    step.changes = ChangesOf(changes, before);
  } catch (const DocumentError& error) {
    Break();
    step = {true, false, error.what(), ChangesOf(changes, {})};
  }
  return step;
}

}  // namespace Norvik::Documents
