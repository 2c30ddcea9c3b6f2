#include "common/text/Text.h"

#include <sodium.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstring>

#include "json/Utf8.h"

namespace Norvik::Common {

namespace {

using json::Utf8Step;

constexpr char BLANKS[] = " \t\n\v\f\r";

/// The character at a position, or the one byte there as a stray one, which callers take as
/// Latin-1.
Utf8Step CharacterAt(const std::string& text, std::size_t at) {
  const Utf8Step step = json::Utf8StepAt(text, at);
  if (step.kind != Utf8Step::Kind::Irregular) return step;
  return {Utf8Step::Kind::Stray, 1, static_cast<unsigned char>(text[at])};
}

bool IsForbiddenInName(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte <= ' ' || byte == 0x7F || std::strchr("\\/:*?\"<>|'&%#$;`", c) != nullptr;
}

/// Whether one of the control characters U+0080 to U+009F begins at the position.
bool IsLongControl(const std::string& text, std::size_t at) {
  return at + 1 < text.size() && text[at] == '\xC2' &&
         static_cast<unsigned char>(text[at + 1]) < 0xA0;
}

/// The decoded bytes; empty if the text is not Base64.
std::string DecodeBase64(const std::string& text) {
  std::string bytes(text.size() / 4 * 3 + 3, '\0');
  std::size_t length = 0;
  const int failure =
      sodium_base642bin(reinterpret_cast<unsigned char*>(bytes.data()), bytes.size(), text.data(),
                        text.size(), BLANKS, &length, nullptr, sodium_base64_VARIANT_ORIGINAL);
  bytes.resize(failure ? 0 : length);
  return bytes;
}

}  // namespace

std::string ToUtf8(const wxString& text) {
  const auto buffer = text.utf8_str();
  return std::string(buffer.data(), buffer.length());
}

wxString WxStringFromStdString(const std::string& text) {
  // The library lets surrogates and numbers above U+10FFFF through.
  return json::IsUtf8(text) ? wxString::FromUTF8(text.data(), text.size()) : wxString();
}

std::wstring StringToWstring_Deprecated(const std::string& text) {
  std::wstring wide;
  for (std::size_t at = 0; at < text.size();) {
    const Utf8Step step = CharacterAt(text, at);
    wide += static_cast<wchar_t>(step.code);
    at += step.length;
  }
  return wide;
}

std::string EncodeUtf8Characters(const std::string& text) {
  std::string encoded;
  for (std::size_t at = 0; at < text.size();) {
    const Utf8Step step = CharacterAt(text, at);
    if (step.kind == Utf8Step::Kind::Character) {
      encoded.append(text, at, step.length);
    } else {
      encoded += static_cast<char>(0xC0 | (step.code >> 6));
      encoded += static_cast<char>(0x80 | (step.code & 0x3F));
    }
    at += step.length;
  }
  return encoded;
}

std::string ToUpper(const std::string& text) {
  std::string upper = text;
  for (char& c : upper) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return upper;
}

std::string trim_copy(std::string text) {
  text.erase(text.find_last_not_of(BLANKS) + 1);
  text.erase(0, text.find_first_not_of(BLANKS));
  return text;
}

std::string OnOneLine(std::string text) {
  std::replace_if(
      text.begin(), text.end(),
      [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }, ' ');
  return text.substr(0, text.find_last_not_of(' ') + 1);
}

std::string EscapeControls(const std::string& text) {
  std::string escaped;
  for (std::size_t at = 0; at < text.size();) {
    const Utf8Step step = CharacterAt(text, at);
    char number[12];
    if (step.code == '\n') {
      escaped += "\\n";
    } else if (step.kind != Utf8Step::Kind::Character || step.code < 0x20 || step.code == 0x7F) {
      std::snprintf(number, sizeof(number), "\\x%02x", static_cast<unsigned int>(step.code));
      escaped += number;
    } else if (step.code >= 0x80 && step.code < 0xA0) {
      std::snprintf(number, sizeof(number), "\\u%04x", static_cast<unsigned int>(step.code));
      escaped += number;
    } else {
      escaped.append(text, at, step.length);
    }
    at += step.length;
  }
  return escaped;
}

std::string CharacterConverter::ChangeSpecialCharacter(const std::string& text) {
  const std::string source = EncodeUtf8Characters(text);
  std::string changed;
  for (std::size_t at = 0; at < source.size(); ++at) {
    const bool longControl = IsLongControl(source, at);
    changed += longControl || IsForbiddenInName(source[at]) ? '_' : source[at];
    if (longControl) ++at;
  }
  return changed;
}

std::vector<std::string> Base64Coder::DecodeStringBytes(const std::string& text) {
  const std::string bytes = DecodeBase64(text);
  std::vector<std::string> texts;
  for (std::size_t begin = 0; begin < bytes.size();) {
    const std::size_t end = std::min(bytes.find('\0', begin), bytes.size());
    texts.push_back(bytes.substr(begin, end - begin));
    begin = end + 1;
  }
  return texts;
}

}  // namespace Norvik::Common
