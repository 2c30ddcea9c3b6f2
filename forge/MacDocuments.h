#pragma once

#include <string>
#include <vector>

#include "forge/Mac.h"

namespace Norvik::Forge {

/// A document as an agent makes it.
struct MadeDocument {
  enum Kind { Inventory, IncrementalInventory, FileInventory };

  int day;
  Kind kind;
  std::string text;

  /// As the schema of its kind is called.
  std::string KindName() const;
  /// Of the file in the outbox: "jsonkob" or "jsonrud".
  std::string Extension() const { return kind == FileInventory ? "jsonrud" : "jsonkob"; }
};

/// The documents of a Mac in the order in which its agent makes them.
class MacDocuments {
 public:
  /// @param files  how many files the Mac has; 0: it makes no file inventories
  MacDocuments(const Mac& mac, std::size_t files) : mac_(mac), files_(files) {}

  /// Goes on after the documents of a day, which were made before.
  void Begin(int day);
  /// The documents of a day, which is later than that of the last call: full ones the first time,
  /// then the changes. None where the Mac is off or nothing has changed.
  std::vector<MadeDocument> Next(int day);

 private:
  const Mac& mac_;
  std::size_t files_;
  Json inventory_;  ///< null until there was one
  Json fileInventory_;
};

/// The text of `Documents::DifferenceOf` of two documents of one machine, made faster: what is
/// equal in both is left out of the comparison.
std::string IncrementBetween(const Json& before, const Json& after);

}  // namespace Norvik::Forge
