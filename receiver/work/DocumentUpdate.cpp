#include "receiver/work/DocumentUpdate.h"

#include <sodium.h>

#include <algorithm>
#include <cstring>

#include "documents/ApplyIncrement.h"
#include "documents/Difference.h"
#include "documents/DocumentChanges.h"
#include "documents/DocumentError.h"
#include "documents/FileDocument.h"
#include "documents/FileReading.h"
#include "documents/MachineDocument.h"
#include "documents/SectionKeys.h"
#include "receiver/work/StoredText.h"

namespace Norvik::Receiver {

namespace {

using Documents::Escapes;
using Documents::Json;
using Documents::NamedText;
using Documents::RecordChange;

constexpr Inventory MACHINE = {"inventory", 1071};
constexpr Inventory FILES = {"file-inventory", 1037};
constexpr std::size_t ROWS_AT_ONCE = 2000;
constexpr char DOCUMENT_TIME[] = "assetDate";

long long NumberOf(const std::string& section, const std::string& body) {
  const std::string text = section + '\0' + body;
  unsigned char digest[crypto_generichash_BYTES_MIN];
  crypto_generichash(digest, sizeof(digest), reinterpret_cast<const unsigned char*>(text.data()),
                     text.size(), nullptr, 0);
  long long number = 0;
  std::memcpy(&number, digest, sizeof(number));
  return number;
}

void AddRecord(const std::string& section, const Json& record, Records& records) {
  std::string body = StorableText(record);
  const long long number = NumberOf(section, body);
  records.emplace(number, std::make_pair(section, std::move(body)));
}

/// As the log of changes has it.
std::string TextOf(const RecordChange& change) {
  static constexpr const char* NAMES[] = {"came", "went", "changed"};
  Json body = {{"change", NAMES[change.kind]}};
  if (!change.identity.is_null()) body["identity"] = change.identity;
  if (change.kind != RecordChange::Changed) {
    body["record"] = change.record;
    return StorableText(body);
  }
  for (const auto& [property, from, to] : change.properties) {
    body["properties"].push_back({{"property", property}, {"from", from}, {"to", to}});
  }
  return StorableText(body);
}

const Json& DeviceOf(const Json& value, const std::string& agent) {
  const auto device = value.is_object() ? value.find("device") : value.end();
  if (!value.is_object() || device == value.end() || !device->is_object()) {
    throw Unusable("no document of an inventory");
  }
  if (device->value("guid", Json()) != agent) {
    throw Unusable("of another machine than the agent that sent it");
  }
  return *device;
}

bool IsIncremental(const Json& document) {
  return document.contains("update") || document.value("typeInventory", Json()) == 1;
}

using Checks = void (*)(const Json&);
Checks ChecksOf(const std::string& kind, bool isIncremental) {
  if (kind == MACHINE.kind) {
    return isIncremental ? Documents::CheckIncrementalDocument : Documents::CheckFullDocument;
  }
  return isIncremental ? Documents::CheckIncrementalFileDocument : Documents::CheckFullFileDocument;
}

/// Bytes that are no UTF-8 stay masked: records and changes show U+FFFD for each.
Json ParsedOf(const NamedText& document) {
  return Documents::ParseDocument(document, Escapes::Kept).value;
}

/// Both have passed the checks, so an error means that they do not fit.
std::string Applied(const NamedText& base, const NamedText& changes) {
  try {
    return Documents::ApplyIncrement(base, changes);
  } catch (const Documents::DocumentError& error) {
    throw Gap(error.what());
  }
}

/// The changes between two full documents; null if there is no first one.
Json ChangesBetween(const NamedText& base, const NamedText& document) {
  if (base.text.empty()) return {};
  return ParsedOf({"the changes", Documents::DifferenceOf(base, document)});
}

/// Calls `run(rows)` with the elements of a list, many at once.
template <class Run>
void InPieces(const Json& rows, Run run) {
  for (std::size_t from = 0; from < rows.size(); from += ROWS_AT_ONCE) {
    const auto begin = rows.begin() + static_cast<std::ptrdiff_t>(from);
    const auto end =
        begin + static_cast<std::ptrdiff_t>(std::min(ROWS_AT_ONCE, rows.size() - from));
    run(Json(Json::array_t(begin, end)).dump());
  }
}

}  // namespace

Records RecordsOf(const Json& document) {
  Records records;
  for (const std::string& section : Documents::SectionKeys()) {
    const auto found = document.find(section);
    if (found == document.end()) continue;
    if (found->is_array()) {
      for (const Json& record : *found) AddRecord(section, record, records);
    } else if (found->is_object()) {
      Json record = *found;
      if (section == "device") record.erase(DOCUMENT_TIME);
      AddRecord(section, record, records);
    }
  }
  return records;
}

const Inventory& InventoryOf(const std::string& text) {
  return Documents::IsFileDocumentText(text) ? FILES : MACHINE;
}

DocumentUpdate::DocumentUpdate(Session& session, std::string agent, const std::string& text)
    : agent_(std::move(agent)), kind_(InventoryOf(text).kind) {
  try {
    const NamedText named{"the document", text};
    const Json document = Documents::ParseDocument(named, Escapes::Kept).value;
    const Json date = DeviceOf(document, agent_).value(DOCUMENT_TIME, Json());
    assetDate_ = date.is_number_integer() ? date.get<long long>() : 0;
    const auto rows = session.Rows<2>(
        "SELECT body, complete FROM documents WHERE agent=? AND kind=?", {agent_, kind_});
    const NamedText base{"the stored document",
                         rows.empty() ? std::string() : Unpacked(rows.front()[0])};
    const bool isIncremental = IsIncremental(document);
    ChecksOf(kind_, isIncremental)(document);
    if (isIncremental && (base.text.empty() || rows.front()[1] == "0")) {
      throw Gap("a full document is awaited");
    }
    if (text == base.text) return;
    const Json before = base.text.empty() ? Json() : ParsedOf(base);
    text_ = isIncremental ? Applied(base, named) : text;
    TakeChanges(base, before, isIncremental ? document : ChangesBetween(base, named));
    if (kind_ != MACHINE.kind) return;
    if (!before.is_null()) before_ = RecordsOf(before);
    after_ = RecordsOf(isIncremental ? ParsedOf({"the new document", text_}) : document);
  } catch (const Documents::DocumentError& error) {
    throw Unusable(error.what());
  }
}

void DocumentUpdate::TakeChanges(const NamedText& base, const Json& before, const Json& changes) {
  if (base.text.empty()) {
    changes_.push_back({"", R"({"change":"first"})"});
    return;
  }
  for (const RecordChange& change : Documents::ChangesOf(changes, before)) {
    changes_.push_back({change.section, TextOf(change)});
  }
}

void DocumentUpdate::Store(Session& session) const {
  if (text_.empty()) {
    session.Run("UPDATE documents SET complete=1 WHERE agent=? AND kind=? AND complete=0",
                {agent_, kind_});
    return;
  }
  session.Run(
      "INSERT INTO documents(agent, kind, body, asset_date, stored, complete) VALUES(?,?,?,?,?,1) "
      "ON CONFLICT(agent, kind) DO UPDATE SET body=excluded.body, asset_date=excluded.asset_date, "
      "stored=excluded.stored, complete=1",
      {agent_, kind_, Packed(text_), assetDate_, Now()});
  StoreRecords(session);
  StoreChanges(session);
}

void DocumentUpdate::StoreRecords(Session& session) const {
  Json gone = Json::array(), added = Json::array();
  for (const auto& [number, record] : before_) {
    if (after_.count(number) == 0) gone.push_back(number);
  }
  for (const auto& [number, record] : after_) {
    if (before_.count(number) == 0) added.push_back({number, record.first, record.second});
  }
  InPieces(gone, [&](const std::string& rows) {
    session.Run(
        "DELETE FROM records WHERE agent=? AND record IN "
        "(SELECT CAST(CAST(value AS TEXT) AS BIGINT) FROM {each})",
        {agent_, rows});
  });
  InPieces(added, [&](const std::string& rows) {
    session.Run(
        "INSERT INTO records(agent, record, section, body) SELECT CAST(? AS {uuid}), "
        "CAST(value ->> 0 AS BIGINT), value ->> 1, CAST(value ->> 2 AS {json}) FROM {each}",
        {agent_, rows});
  });
}

void DocumentUpdate::StoreChanges(Session& session) const {
  InPieces(changes_, [&](const std::string& rows) {
    session.Run(
        "INSERT INTO changes(agent, txn, time, kind, section, body) "
        "SELECT CAST(? AS {uuid}), {transaction}, CAST(? AS BIGINT), CAST(? AS TEXT), "
        "value ->> 0, value ->> 1 FROM {each}",
        {agent_, assetDate_ / 1000, kind_, rows});
  });
}

}  // namespace Norvik::Receiver
