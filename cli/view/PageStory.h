#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "cli/view/ViewedDocument.h"
#include "documents/DocumentChain.h"

namespace Norvik::Cli {

/// What documents of one machine say together: what each of them changed, and the state after the
/// last one.
class PageStory {
 public:
  /// @param documents in their order; those of the states that no document has are appended
  explicit PageStory(std::vector<ViewedDocument> documents);

  const std::vector<ViewedDocument>& Documents() const { return documents_; }
  /// Index of the document with the newest complete state of each inventory, if there is one.
  std::optional<std::size_t> CurrentMachine() const { return machine_.current; }
  std::optional<std::size_t> CurrentFiles() const { return files_.current; }
  /// JSON list of the changes, in the order of the documents.
  std::string ChangesJson() const { return "[" + changes_ + "]"; }
  std::size_t Changes() const { return changeCount_; }
  /// What is missing, a line each.
  const std::vector<std::string>& Notes() const { return notes_; }

 private:
  /// The documents of one inventory.
  struct Chain {
    Documents::DocumentChain documents;
    std::size_t count = 0;
    std::optional<std::size_t> last;
    std::optional<std::size_t> current;
    std::optional<ViewedDocument> applied;  ///< replaces `current`
    bool isBroken = false;
  };

  void Follow(std::size_t at, Chain& chain);
  void NoteGap(std::size_t at, const Documents::DocumentChain::Step& step, Chain& chain);
  void AddChanges(std::size_t at, const Documents::DocumentChain::Step& step, const Chain& chain);
  void Finish(Chain& chain);

  std::vector<ViewedDocument> documents_;
  Chain machine_;
  Chain files_;
  std::string changes_;
  std::size_t changeCount_ = 0;
  std::vector<std::string> notes_;
};

}  // namespace Norvik::Cli
