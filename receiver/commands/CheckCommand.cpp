#include <sodium.h>

#include <boost/filesystem/operations.hpp>
#include <nlohmann/json.hpp>
#include <set>

#include "common/files/TextFile.h"
#include "documents/DocumentError.h"
#include "documents/FileDocument.h"
#include "documents/FileReading.h"
#include "documents/MachineDocument.h"
#include "platform/FileSystem.h"
#include "receiver/commands/Commands.h"
#include "receiver/files/UploadFolder.h"
#include "receiver/work/DocumentUpdate.h"
#include "receiver/work/StoredText.h"

namespace Norvik::Receiver {

namespace {

constexpr long long PAGE = 500;

/// What does not fit, as rows of "table, row, problem".
class Findings {
 public:
  explicit Findings(const Place& place) : place_(place) {}

  void Add(const std::string& table, const std::string& row, const std::string& problem) {
    PrintRows(place_, {"table", "row", "problem"}, {{table, row, problem}});
    ++count_;
  }
  int Count() const { return count_; }

 private:
  const Place& place_;
  int count_ = 0;
};

std::string ChecksumOf(const std::string& path) {
  const Platform::FileDescriptor file = Platform::OpenRegularFile(path);
  crypto_hash_sha256_state state;
  crypto_hash_sha256_init(&state);
  std::vector<char> piece(1 << 16);
  while (const std::size_t size = Platform::ReadFull(file, piece.data(), piece.size())) {
    crypto_hash_sha256_update(&state, reinterpret_cast<const unsigned char*>(piece.data()), size);
  }
  unsigned char digest[crypto_hash_sha256_BYTES];
  crypto_hash_sha256_final(&state, digest);
  char text[2 * sizeof(digest) + 1];
  return sodium_bin2hex(text, sizeof(text), digest, sizeof(digest));
}

void CheckUploads(const Place& place, Session& session, Findings& findings) {
  const UploadFolder files(place.data);
  std::set<std::string> known;
  long long last = 0;
  while (true) {
    const auto rows = session.Rows<4>(
        "SELECT {number as text}, agent, sha256, state FROM uploads WHERE number>? ORDER BY number "
        "LIMIT ?",
        {last, PAGE});
    for (const auto& [number, agent, sha256, state] : rows) {
      last = std::stoll(number);
      const std::string path = files.PathOf(agent, sha256);
      known.insert(path);
      if (!boost::filesystem::exists(path)) {
        if (state != "applied") findings.Add("uploads", number, "its file is missing: " + path);
      } else if (ChecksumOf(path) != sha256) {
        findings.Add("uploads", number, "its file has another checksum: " + path);
      }
    }
    if (rows.empty()) break;
  }
  for (const std::string& path : files.Paths()) {
    // The name of a file that is being received begins with a dot.
    if (boost::filesystem::path(path).filename().string().front() == '.') continue;
    if (known.count(path) == 0) findings.Add("files", path, "no row belongs to it");
  }
}

void CheckDocument(const std::string& kind, const std::string& text) {
  const Documents::Document document = Documents::ParseDocument({"the document", text});
  const bool isOfFiles = kind == "file-inventory";
  Documents::CheckDocument(
      document, isOfFiles ? Documents::CheckFullFileDocument : Documents::CheckFullDocument);
}

void CheckRecords(Session& session, const std::string& agent, const std::string& text,
                  Findings& findings) {
  Records expected =
      RecordsOf(Documents::ParseDocument({"the document", text}, Documents::Escapes::Kept).value);
  for (const auto& [record, section, body] :
       session.Rows<3>("SELECT record, section, body FROM records WHERE agent=?", {agent})) {
    const auto found = expected.find(std::stoll(record));
    const bool isSame = found != expected.end() && found->second.first == section &&
                        nlohmann::json::parse(found->second.second) == nlohmann::json::parse(body);
    if (!isSame) findings.Add("records", agent + " " + record, "it is not in the document");
    if (isSame) expected.erase(found);
  }
  for (const auto& [record, content] : expected) {
    findings.Add("records", agent + " " + std::to_string(record),
                 "a record of " + content.first + " is missing");
  }
}

void CheckDocuments(Session& session, Findings& findings) {
  // One document at a time, since each may be large.
  for (const auto& [agent, kind] :
       session.Rows<2>("SELECT agent, kind FROM documents ORDER BY agent, kind")) {
    const auto rows =
        session.Rows<1>("SELECT body FROM documents WHERE agent=? AND kind=?", {agent, kind});
    if (rows.empty()) continue;
    try {
      const std::string text = Unpacked(rows.front()[0]);
      if (text.empty()) throw std::runtime_error("its body is damaged");
      CheckDocument(kind, text);
      if (kind == "inventory") CheckRecords(session, agent, text, findings);
    } catch (const std::exception& error) {
      findings.Add("documents", agent + " " + kind, error.what());
    }
  }
}

/// Rows that need an agent that is not there.
void CheckAgents(Session& session, Findings& findings) {
  for (const char* table : {"tasks", "reports", "uploads", "documents", "records", "changes"}) {
    const std::string name = table;
    for (const auto& [agent] : session.Rows<1>("SELECT DISTINCT t.agent FROM " + name +
                                               " t WHERE NOT EXISTS "
                                               "(SELECT 1 FROM agents a WHERE a.agent=t.agent)")) {
      findings.Add(name, agent, "there is no such agent");
    }
  }
  for (const auto& [agent] : session.Rows<1>("SELECT a.agent FROM agents a WHERE NOT EXISTS "
                                             "(SELECT 1 FROM contacts c WHERE c.agent=a.agent)")) {
    findings.Add("contacts", agent, "the row of this agent is missing");
  }
}

}  // namespace

int Check(const Place& place) {
  Session session = place.Open();
  Findings findings(place);
  if (!session.Kind().IsShared()) {
    for (const auto& [problem] : session.Rows<1>("PRAGMA integrity_check")) {
      if (problem != "ok") findings.Add("database", "", problem);
    }
  }
  CheckAgents(session, findings);
  CheckUploads(place, session, findings);
  CheckDocuments(session, findings);
  return findings.Count() == 0 ? 0 : 1;
}

}  // namespace Norvik::Receiver
