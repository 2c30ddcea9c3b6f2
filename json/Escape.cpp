#include "json/Escape.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "json/Utf8.h"

namespace json {
namespace {

/// Whether a byte is written unchanged, by its number.
constexpr std::array<bool, 256> PlainBytes() {
  std::array<bool, 256> plain{};
  for (std::size_t byte = 0x20; byte < 0x80; ++byte) plain[byte] = byte != '"' && byte != '\\';
  return plain;
}
constexpr std::array<bool, 256> plainBytes = PlainBytes();

/// Position of the first byte, from `start` on, that is not written unchanged; the size if all are.
std::size_t EndOfPlain(const std::string& text, std::size_t start) {
  constexpr std::uint64_t ones = 0x0101010101010101;
  constexpr std::uint64_t high = 0x80 * ones;
  std::size_t i = start;
  for (; i + 8 <= text.size(); i += 8) {
    std::uint64_t word = 0;
    std::memcpy(&word, text.data() + i, 8);
    // Eight bytes at a time: a byte smaller than what is subtracted gets its highest bit set.
    const std::uint64_t quote = (word ^ ('"' * ones)) - ones;
    const std::uint64_t backslash = (word ^ ('\\' * ones)) - ones;
    const std::uint64_t control = word - 0x20 * ones;
    if (((word | quote | backslash | control) & high) != 0) break;
  }
  while (i < text.size() && plainBytes[static_cast<unsigned char>(text[i])]) ++i;
  return i;
}

/// Length of the sequence at a byte at or above 0x80; 0 for a stray byte. Deliberately lets
/// irregular sequences through: that is the form of the documents.
std::size_t SequenceLength(const std::string& text, std::size_t start) {
  const Utf8Step step = Utf8StepAt(text, start);
  return step.kind == Utf8Step::Kind::Stray ? 0 : step.length;
}

void AppendNumbered(std::string& out, unsigned char byte) {
  constexpr char digits[] = "0123456789abcdef";
  out += "\\u00";
  out += digits[byte >> 4];
  out += digits[byte & 0xF];
}

void AppendControl(std::string& out, unsigned char byte) {
  switch (byte) {
    case '\b':
      out += "\\b";
      break;
    case '\t':
      out += "\\t";
      break;
    case '\n':
      out += "\\n";
      break;
    case '\f':
      out += "\\f";
      break;
    case '\r':
      out += "\\r";
      break;
    case '"':
      out += "\\\"";
      break;
    case '\\':
      out += "\\\\";
      break;
    default:
      AppendNumbered(out, byte);
  }
}

}  // namespace

void AppendEscaped(std::string& out, const std::string& text) {
  std::size_t copied = 0;
  std::size_t i = 0;
  while (i < text.size()) {
    i = EndOfPlain(text, i);
    if (i == text.size()) break;
    const auto byte = static_cast<unsigned char>(text[i]);
    const std::size_t length = byte < 0x80 ? 0 : SequenceLength(text, i);
    if (length > 0) {
      i += length;
      continue;
    }
    out.append(text, copied, i - copied);
    AppendControl(out, byte);
    copied = ++i;
  }
  out.append(text, copied);
}

std::string json_escape(const std::string& text) {
  std::string out;
  out.reserve(text.size() * 2);
  AppendEscaped(out, text);
  return out;
}

}  // namespace json
