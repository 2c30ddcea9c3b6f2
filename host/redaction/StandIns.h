#pragma once

#include <functional>
#include <string>

namespace Norvik::Host {

/// Makes stand-ins for values, each computed from the value and a secret: the same value always has
/// the same one, different values have different ones, and nothing leads back without the secret. A
/// stand-in has the length and the form of its value: a digit for a digit, a letter for a letter of
/// the same case and script, and all other characters unchanged. No digit or letter means no
/// change. One thread at a time.
class StandIns {
 public:
  /// 32 random bytes.
  static std::string NewSecret();

  /// @param secret of any length
  explicit StandIns(const std::string& secret);

  /// Hexadecimal digits stay such. Separators do not matter: "ana@" has that of "ana" and "@".
  std::string OfText(const std::string& text) const;
  /// Each word between blanks has a stand-in of its own.
  std::string OfWords(const std::string& text) const;
  /// Hexadecimal digits with any separators; zeros stay.
  std::string OfHex(const std::string& digits) const;
  /// An IPv4 or IPv6 address. Its network decides on the stand-in of its network. Private ranges
  /// stay what they are; others go to ranges that nobody has. Masks, loopback and the like have no
  /// stand-in, and what is no address is returned as it is.
  std::string OfAddress(const std::string& address) const;
  /// The first part, up to a dot, and the rest.
  std::string OfHost(const std::string& name) const;
  /// Decimal digits, perhaps with a sign, a point and an exponent. The whole part keeps the number
  /// of its digits and stays below `most`.
  std::string OfNumber(const std::string& number, unsigned int most) const;

  /// Is called with each value and its stand-in from now on.
  void SetListener(std::function<void(const std::string& value, const std::string& standIn)> made) {
    made_ = std::move(made);
  }

 private:
  enum class Alphabet { TEXT, HEX_TEXT, HEX };

  std::string Permuted(const std::string& text, Alphabet alphabet, const std::string& tweak) const;
  std::string PartOfIpv4(const std::string& part, const std::string& before) const;
  std::string OfIpv4(const std::string& address) const;
  std::string OfIpv6(const std::string& address) const;
  const std::string& Made(const std::string& value, const std::string& standIn) const;

  std::string key_;
  std::function<void(const std::string&, const std::string&)> made_;
};

}  // namespace Norvik::Host
