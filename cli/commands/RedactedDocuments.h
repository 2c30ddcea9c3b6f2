#pragma once

#include <string>
#include <vector>

#include "documents/DocumentText.h"
#include "host/redaction/Replacements.h"

namespace Norvik::Cli {

/// Documents of either inventory, full or incremental, without personal data. They belong together
/// as before: what is equal in two of them stays equal, and what differs stays different.
class RedactedDocuments {
 public:
  /// Throws `DocumentError` if one of them is no such document.
  /// @param standIns must outlive this
  RedactedDocuments(std::vector<Documents::NamedText> documents, const Host::StandIns& standIns);

  /// One document after the other, in their order; each is returned once. Throws `DocumentError`
  /// for a file inventory that is no such document.
  std::string Next();
  /// A text with the values of the documents, as the name of a file.
  std::string Redacted(const std::string& text) const;

 private:
  std::vector<Documents::NamedText> texts_;  ///< empty if it is parsed
  std::vector<Documents::Document> parsed_;  ///< of the machine inventory
  Host::Replacements replacements_;
  std::size_t next_ = 0;
};

}  // namespace Norvik::Cli
