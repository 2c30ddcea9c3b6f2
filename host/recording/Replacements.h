#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Norvik::Host {

/// Replaces sensitive values, each by a random one of the same length and alphabet: a digit by a
/// digit, a letter by a letter. A value has the same replacement wherever it is found and however
/// it is written.
class Replacements {
 public:
  Replacements();

  /// Keeps `AddText` from taking what is one of these words, or a part of one where it would be
  /// found there: keys, and the words of commands.
  void Protect(const std::string& text);
  /// A name, a serial number and the like. Below six bytes it is found as a whole word only, and
  /// below three bytes not at all.
  void AddText(const std::string& text);
  /// Bytes in hexadecimal digits, with or without ":", "-" or "_", as in a UUID. Found with any of
  /// these separators, and as the bytes themselves. Zeros stay.
  void AddHex(const std::string& text);
  /// An IPv4 or IPv6 address, which keeps its first part; addresses of one network stay in one.
  /// Any other text, a mask and an address that all machines have are ignored.
  void AddAddress(const std::string& text);
  /// A decimal number, found as a whole word. Its first digit stays, so that it is no larger.
  void AddNumber(const std::string& digits);
  /// A number, found as a whole word, and a replacement of the caller's with as many digits.
  void AddNumber(const std::string& digits, const std::string& replacement);

  /// Whether `AddText` has taken this text.
  bool Has(const std::string& text) const;
  std::size_t Count() const { return known_.size(); }
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

  std::string Substitute(const std::string& text, bool keepsZeros);
  std::string SubstitutePart(const std::string& before, const std::string& part);
  void AddIpv4(const std::string& text);
  void AddIpv6(const std::string& text);
  void AddPattern(const std::string& from, const std::string& to, Edge edge, bool isExact = false);
  const Pattern* MatchAt(const std::string& bytes, const std::string& lower, std::size_t at) const;

  std::string protected_ = "\n";              ///< words in lower case, each with a line end
  std::set<std::string> known_;               ///< values in lower case
  std::set<std::string> used_;                ///< replacements
  std::map<std::string, std::string> parts_;  ///< of addresses, with what comes before them
  /// By the first three bytes in lower case, the longest first.
  std::unordered_map<std::uint32_t, std::vector<Pattern>> patterns_;
  std::vector<bool> beginnings_;  ///< whether there is a pattern
};

}  // namespace Norvik::Host
