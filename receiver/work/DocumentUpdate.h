#pragma once

#include <map>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "documents/DocumentText.h"
#include "receiver/database/Session.h"

namespace Norvik::Receiver {

/// Sections and bodies by the number that the database knows a record by.
using Records = std::map<long long, std::pair<std::string, std::string>>;
/// The records of a full document of the machine inventory, as they are searched. The time of the
/// document is left out.
Records RecordsOf(const Documents::Json& document);

/// A document cannot be used, now or later.
class Unusable : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};
/// A document before this one was lost: only a full one can be used next.
class Gap : public Unusable {
 public:
  using Unusable::Unusable;
};

/// The kinds of inventory, and the task that asks for a full document.
struct Inventory {
  const char* kind;
  long long fullTask;
};
const Inventory& InventoryOf(const std::string& text);

/// What a document that has arrived changes of what is stored. The constructor only reads the
/// database.
class DocumentUpdate {
 public:
  /// Throws `Unusable`.
  DocumentUpdate(Session& session, std::string agent, const std::string& text);
  /// Within a transaction in which no one else changes the agent's documents.
  void Store(Session& session) const;

 private:
  void TakeChanges(const Documents::NamedText& base, const Documents::Json& before,
                   const Documents::Json& changes);
  void StoreRecords(Session& session) const;
  void StoreChanges(Session& session) const;

  std::string agent_;
  std::string kind_;
  std::string text_;  ///< of the full document; empty if it stays as it is
  long long assetDate_ = 0;
  Documents::Json changes_ = Documents::Json::array();  ///< pairs of section and body
  Records before_, after_;
};

}  // namespace Norvik::Receiver
