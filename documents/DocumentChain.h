#pragma once

#include <string>
#include <vector>

#include "documents/DocumentChanges.h"

namespace Norvik::Documents {

/// Follows the documents of one machine and of one kind of inventory in the order in which they
/// were taken, and tells what each of them changed.
class DocumentChain {
 public:
  struct Step {
    bool incremental = false;
    /// Whether the state before the document is known. Without it, a full document tells no change
    /// and an incremental one only the new values.
    bool baseKnown = false;
    std::string misfit;  ///< why an incremental document does not fit that state; or empty
    std::vector<RecordChange> changes;
  };

  /// Throws `DocumentError` if the text is no document; the state is not known then.
  Step Follow(const NamedText& document);
  /// A document is missing here.
  void Break() { state_ = {}; }
  /// The full document after the last one; an empty text if it is not known.
  const NamedText& State() const { return state_; }

 private:
  Step FollowFull(const NamedText& text);
  Step FollowIncremental(const NamedText& text, const Json& changes);

  NamedText state_;
};

}  // namespace Norvik::Documents
