#include "module/Inventory/Edid.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <ctime>
#include <limits>

namespace Norvik::KOB {

namespace {

/// A part of a text; shorter or empty where the text ends.
std::string Substring(const std::string& text, std::size_t at, std::size_t length) {
  return at < text.size() ? text.substr(at, length) : std::string();
}

Descriptor::Kind KindOf(const std::string& tag) {
  // Deliberately one kind: some displays report their serial number as plain text.
  if (tag == "fe" || tag == "ff") return Descriptor::SERIAL;
  return tag == "fc" ? Descriptor::NAME : Descriptor::OTHER;
}

const Descriptor* FirstOf(const std::vector<Descriptor>& descriptors, Descriptor::Kind kind) {
  const auto found = std::find_if(descriptors.begin(), descriptors.end(),
                                  [kind](const Descriptor& it) { return it.kind == kind; });
  return found == descriptors.end() ? nullptr : &*found;
}

}  // namespace

std::int32_t hex2num(const std::string& text) {
  using Limits = std::numeric_limits<std::int32_t>;
  const long long value = std::strtoll(text.c_str(), nullptr, 16);
  return static_cast<std::int32_t>(std::clamp<long long>(value, Limits::min(), Limits::max()));
}

Descriptor getDescriptor(const std::string& text) {
  Descriptor descriptor;
  descriptor.kind = KindOf(text.substr(6, 2));
  if (descriptor.kind == Descriptor::OTHER) return descriptor;
  for (std::size_t at = 10; at < text.size(); at += 2) {
    descriptor.text += static_cast<char>(hex2num(text.substr(at, 2)) & 0xFF);
  }
  return descriptor;
}

std::string getIDManufacturer(const std::string& text) {
  const auto value = static_cast<std::uint32_t>(hex2num(text.substr(0, 4)));
  std::string letters;
  for (const int shift : {10, 5, 0}) letters += static_cast<char>(64 + ((value >> shift) & 31));
  return letters;
}

std::string getProductCode(const std::string& text) {
  std::string code;
  for (const std::size_t at : {2u, 3u, 0u, 1u}) code += at < text.size() ? text[at] : '\0';
  return code;
}

std::string getEDIDVersion(const std::string& text) {
  return std::to_string(hex2num(Substring(text, 0, 2))) + "." +
         std::to_string(hex2num(Substring(text, 2, 2)));
}

std::string getName(const std::vector<Descriptor>& descriptors) {
  const Descriptor* const name = FirstOf(descriptors, Descriptor::NAME);
  return name ? name->text : std::string();
}

std::string getSerial(const std::vector<Descriptor>& descriptors, const std::string& text) {
  const Descriptor* const serial = FirstOf(descriptors, Descriptor::SERIAL);
  // Deliberately in the order of the digits, although the block stores the low byte first: the
  // server knows displays by these numbers.
  return serial ? serial->text : std::to_string(hex2num(text));
}

std::int32_t getDate(const std::string& text) {
  const int week = hex2num(Substring(text, 0, 2));
  const int year = hex2num(Substring(text, 2, 2)) + 1990;
  std::tm fields{};
  fields.tm_mday = 1;
  // Deliberately four weeks per month, so week 52 lies in the next year.
  fields.tm_mon = week / 4;
  fields.tm_year = year - 1900;
  return static_cast<std::int32_t>(std::mktime(&fields));
}

}  // namespace Norvik::KOB
