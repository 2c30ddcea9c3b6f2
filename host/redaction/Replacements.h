#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/redaction/StandIns.h"

namespace Norvik::Host {

/// Replaces sensitive values in bytes of any format, each by its stand-in. A value has the same
/// replacement wherever it is found and however it is written: also in UTF-16, and with the escapes
/// of XML, JSON and URIs.
class Replacements {
 public:
  /// @param standIns must outlive this
  explicit Replacements(const StandIns& standIns);

  /// Keeps `AddText` from taking what is one of these words, or a part of one where it would be
  /// found there: keys, and the words of commands.
  void Protect(const std::string& text);
  /// A name, a serial number and the like. Below six bytes it is found as a whole word only, and
  /// below three bytes not at all.
  void AddText(const std::string& text);
  /// The same with a stand-in of the caller's, of the same length, and regardless of what is
  /// protected.
  void AddPair(const std::string& text, const std::string& standIn);
  /// Bytes in hexadecimal digits, with or without ":", "-" or "_", as in a UUID. Found with any of
  /// these separators, and as the bytes themselves. Zeros stay.
  void AddHex(const std::string& text);
  /// An IPv4 or IPv6 address; addresses of one network stay in one. Any other text, a mask and an
  /// address that all machines have are ignored.
  void AddAddress(const std::string& text);
  /// A decimal number, found as a whole word. Its first digit stays, so that it is no larger.
  void AddNumber(const std::string& digits);
  /// A number, found as a whole word, and a replacement of the caller's with as many digits.
  void AddNumber(const std::string& digits, const std::string& replacement);

  /// Whether `AddText` has taken this text.
  bool Has(const std::string& text) const;
  std::size_t Count() const { return known_.size(); }
  const StandIns& GetStandIns() const { return standIns_; }
  /// Replaces all values. The length stays, and so does the case of letters.
  std::string Apply(const std::string& bytes) const;

 private:
  enum class Edge { ANY, WORD, ADDRESS };
  struct Pattern {
    std::string from;  ///< in lower case, unless it is exact
    std::string to;
    Edge edge = Edge::ANY;  ///< where it may begin and end
    bool isExact = false;   ///< bytes, whatever their letters
  };

  void AddForms(const std::string& from, const std::string& to);
  void AddPattern(const std::string& from, const std::string& to, Edge edge, bool isExact = false);
  const Pattern* MatchAt(const std::string& bytes, const std::string& lower, std::size_t at) const;

  const StandIns& standIns_;
  std::string protected_ = "\n";  ///< words in lower case, each with a line end
  std::set<std::string> known_;   ///< values in lower case
  /// By the first three bytes in lower case, the longest first.
  std::unordered_map<std::uint32_t, std::vector<Pattern>> patterns_;
  std::vector<bool> beginnings_;  ///< whether there is a pattern
};

}  // namespace Norvik::Host
