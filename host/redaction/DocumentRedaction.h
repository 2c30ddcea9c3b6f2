#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "host/redaction/Replacements.h"

namespace Norvik::Host {

// Redaction of the documents of both inventories, full and incremental ones, by the property. The
// values of a property that no schema has are replaced as a whole if they are texts.

/// Protects the names of programs, makers and models of a machine's document, so that no account of
/// such a name makes them unreadable. Before anything is added.
void ProtectHarmless(const nlohmann::json& document, Replacements& replacements);

/// Adds the sensitive values of a machine's document, which may be found in its other texts.
void AddValuesOfDocument(const nlohmann::json& document, Replacements& replacements);

/// Replaces the sensitive values of a machine's document. Different values of a property stay
/// different.
void RedactDocument(nlohmann::json& document, const Replacements& replacements);

/// Adds the users in the paths of a document of the file inventory.
void AddUsersOfPaths(const std::string& document, Replacements& replacements);

/// Replaces folders and the records of files in them.
class FileRedaction {
 public:
  /// @param replacements must outlive this
  explicit FileRedaction(const Replacements& replacements) : replacements_(replacements) {}
  void Redact(std::string& folder, nlohmann::json& file);

 private:
  const Replacements& replacements_;
  std::string folder_;  ///< the last one
  std::string redacted_;
  bool isPersonal_ = false;
};

}  // namespace Norvik::Host
