#pragma once

#include <boost/filesystem/path.hpp>
#include <boost/optional.hpp>
#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace Norvik::Host {

enum class DocumentKind { Full, Incremental, Files };

/// "full", "incremental" or "files"
const char* NameOf(DocumentKind kind);

/// What the name of a file of the history says, as in "00000007~20260131T235958Z~full.jsonkob" and
/// "00000008~20260201T235958Z~incremental~delivered.jsonkob".
struct KeptName {
  std::uint64_t number = 0;  ///< grows by one with each document
  std::chrono::system_clock::time_point time;
  DocumentKind kind = DocumentKind::Full;
  bool delivered = false;
  std::string extension;  ///< with its dot

  std::string Text() const;
  /// Empty for any other name.
  static boost::optional<KeptName> Parse(const std::string& text);
};

/// A document of the history.
struct KeptDocument {
  /// `Replaced`: it left the outbox without being delivered, as a rule because a full document
  /// replaced it there.
  enum State { Waiting, Delivered, Replaced };

  boost::filesystem::path path;
  KeptName name;
  std::uintmax_t bytes = 0;
  State state = Waiting;
};

/// "waiting", "delivered" or "replaced"
const char* NameOf(KeptDocument::State state);

/// The documents that are kept in the folder `history` of a data folder, oldest first. None without
/// that folder. Changes nothing. Throws `boost::filesystem::filesystem_error` if a folder cannot be
/// read.
std::vector<KeptDocument> KeptDocumentsOf(const boost::filesystem::path& dataFolder);

}  // namespace Norvik::Host
