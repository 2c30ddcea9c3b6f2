#pragma once

#include <string>
#include <vector>

#include "documents/DocumentText.h"

namespace Norvik::Documents {

/// A property of a record that has changed. A null value is an absent one.
struct PropertyChange {
  std::string property;
  Json from;  ///< null if the former record is not known
  Json to;
};

/// What became of a record.
struct RecordChange {
  enum Kind { Came, Went, Changed };

  Kind kind = Changed;
  std::string section;
  Json identity;                           ///< the identifying fields; null for a single record
  Json record;                             ///< as the document has it; null for `Changed`
  bool fromKnown = true;                   ///< of `Changed`: whether `from` says what was before
  std::vector<PropertyChange> properties;  ///< of `Changed`; all of them unless `fromKnown`
};

/// Section of the changes of a file inventory. The identity of a file is its "pathName", "filename"
/// and "extension".
inline constexpr char FILE_SECTION[] = "paths";

/// The changes that an incremental document tells, by section; for a list in the order in which
/// they are applied. The time in "device" is no change.
/// @param changes a checked incremental document of either kind of inventory
/// @param before  the checked full document that it changes; null: not known
std::vector<RecordChange> ChangesOf(const Json& changes, const Json& before);

}  // namespace Norvik::Documents
