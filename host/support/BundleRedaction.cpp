#include "host/support/BundleRedaction.h"

#include <algorithm>
#include <boost/algorithm/string/predicate.hpp>
#include <boost/filesystem/operations.hpp>
#include <iterator>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string_view>

#include "common/files/TextFile.h"
#include "common/text/MaskedDocument.h"
#include "host/data/DataFolder.h"
#include "host/recording/SystemFacts.h"
#include "host/redaction/DocumentRedaction.h"
#include "host/redaction/EncodedBytes.h"
#include "host/redaction/SensitiveFacts.h"
#include "host/redaction/SensitiveFirmware.h"
#include "host/redaction/SensitiveForms.h"
#include "host/redaction/SensitiveKeys.h"
#include "host/redaction/ValueRedaction.h"
#include "json/Nesting.h"

namespace Norvik::Host {

namespace {

namespace fs = boost::filesystem;
using namespace std::string_view_literals;
using nlohmann::json;
using Kind = SensitiveKind;

constexpr std::size_t LEAST_SECRET = 8;
/// Of a key in a text, as in PEM.
constexpr std::size_t LEAST_KEY = 16;
constexpr int MAX_DEPTH = 3;
/// So many addresses are also searched for in other forms.
constexpr std::size_t MAX_FORMS = 5000;
/// Of a line that is read at once.
constexpr std::size_t PIECE = 4096;

/// Keys of the agent's own files, besides those that `KindOfKey` knows.
std::optional<Kind> KindOfOwnKey(const std::string& key) {
  static constexpr std::string_view HOSTS[] = {"address", "server", "alternates", "proxy"};
  if (std::find(std::begin(HOSTS), std::end(HOSTS), key) != std::end(HOSTS)) return Kind::HOST;
  if (key == "identifier") return Kind::HEX;
  return KindOfKey(key);
}

/// Archives, binary property lists and UTF-16: nothing that is searched for values.
bool IsOpaque(const std::string& bytes) {
  static constexpr std::string_view BEGINNINGS[] = {"PK\x03\x04"sv,
                                                    "\x1f\x8b"sv,
                                                    "BZh"sv,
                                                    "\xfd"
                                                    "7zXZ"sv,
                                                    "7z\xbc\xaf"sv,
                                                    "\x28\xb5\x2f\xfd"sv,
                                                    "bplist"sv};
  const auto zeros = static_cast<std::size_t>(std::count(bytes.begin(), bytes.end(), '\0'));
  return std::any_of(
             std::begin(BEGINNINGS), std::end(BEGINNINGS),
             [&](std::string_view begin) { return bytes.compare(0, begin.size(), begin) == 0; }) ||
         (bytes.size() >= 8 && zeros * 3 >= bytes.size() && zeros * 2 <= bytes.size() + 1);
}

/// Where a path ends in a line. A blank belongs to it if another part or an extension follows.
std::size_t EndOfPath(const std::string& line, std::size_t begin) {
  static constexpr std::string_view ENDS = "\"'<>:;,()|\t\r\n"sv;
  const std::size_t last = std::min(line.find_first_of(ENDS, begin), line.size());
  std::size_t end = std::min(line.find(' ', begin), last);
  while (end < last) {
    const std::size_t next = std::min(line.find(' ', end + 1), last);
    const std::string word = line.substr(end + 1, next - end - 1);
    const auto dot = word.rfind('.');
    const bool hasExtension = dot != std::string::npos && dot > 0 && dot + 1 < word.size();
    if (word.find('/', 1) == std::string::npos && !hasExtension) break;
    end = next;
  }
  return end;
}

OrderedJson ParsedJson(const std::string& text) {
  if (::json::NestsDeeperThan(text, MAX_NESTING)) return OrderedJson::value_t::discarded;
  return OrderedJson::parse(text, nullptr, /*allow_exceptions=*/false);
}

json ParsedDocument(const std::string& text) {
  if (::json::NestsDeeperThan(text, MAX_NESTING)) return json::value_t::discarded;
  std::istringstream stream(text);
  Common::MaskedDocument masked(stream);
  std::istream input(&masked);
  return json::parse(input, nullptr, /*allow_exceptions=*/false);
}

std::string Base64Of(const std::string& bytes) {
  return ToAnyBase64(bytes, std::string((bytes.size() * 8 + 5) / 6, 'A'));
}

}  // namespace

BundleRedaction::BundleRedaction(const fs::path& dataFolder)
    : folder_(dataFolder), standIns_(StandIns::NewSecret()), bytes_(standIns_) {
  AddMachine();
  AddIdentity();
  AddKeys();
}

void BundleRedaction::AddMachine() {
  Questions questions;
  questions.Stop();
  for (const auto& [name, content] : SystemFacts(questions)) {
    if (name == "processes.json") continue;
    bytes_.AddDisplays(content);
    AddValuesOfFacts(name, content, bytes_.replacements);
    AddValuesOfSmbios(content, bytes_.replacements);
    AddKeyedValues(content, bytes_.replacements);
    if (name == "interfaces.json") AddForms(content, bytes_.replacements);
  }
}

void BundleRedaction::AddSecret(const std::string& secret) {
  if (secret.size() < LEAST_SECRET) return;
  secrets_.push_back(secret);
  bytes_.replacements.AddText(secret);
}

/// Also of a damaged file.
void BundleRedaction::AddIdentity() {
  try {
    const std::string text = Common::ReadTextFile(folder_ / IDENTITY_FILE);
    AddTexts(text);
    const OrderedJson identity = ParsedJson(text);
    if (!identity.is_object()) return;
    AddJson("", identity);
    for (const auto& [key, value] : identity.items()) {
      if (value.is_string() && KindOfKey(key) == Kind::SECRET) AddSecret(value);
    }
  } catch (const std::exception&) {
    // What cannot be read is in no other file that can.
  }
}

void BundleRedaction::AddKeys() {
  boost::system::error_code error;
  for (fs::directory_iterator item(folder_ / KEY_FOLDER, error), end; !error && item != end;
       item.increment(error)) {
    try {
      const std::string key = Common::ReadTextFile(item->path());
      bytes_.replacements.AddHex(ToHex(key, ""));
      for (const std::string& text : {key, ToHex(key, ""), Base64Of(key)}) AddSecret(text);
      ForEachBase64Part(key, [&](std::size_t begin, std::size_t length) {
        if (length >= LEAST_KEY) AddSecret(key.substr(begin, length));
      });
    } catch (const std::exception&) {
      // As above.
    }
  }
}

void BundleRedaction::AddTexts(const std::string& text) {
  AddKeyedValues(text, bytes_.replacements);
  ForEachForm(text, [&](Kind kind, const std::string& value) {
    // Where they are written as usual, they are found by their form anyway.
    const bool isKnownOnlySo = kind == Kind::NAME || kind == Kind::HOST;
    if (!isKnownOnlySo && bytes_.replacements.Count() > MAX_FORMS) return;
    AddSensitive(kind, value, bytes_.replacements);
  });
}

void BundleRedaction::AddJson(const std::string& key, const OrderedJson& value) {
  if (value.is_structured()) {
    for (const auto& item : value.items()) {
      AddJson(value.is_object() ? item.key() : key, item.value());
    }
  } else if (value.is_string()) {
    const std::string text = value;
    const auto kind = KindOfOwnKey(key);
    if (kind) AddSensitive(*kind, text, bytes_.replacements);
    AddTexts(text);
  }
}

void BundleRedaction::AddValues(const BundleFile& file) {
  AddTexts(file.content);
  if (file.kind == BundleFile::Kind::DOCUMENT) {
    AddValuesOfDocument(ParsedDocument(file.content), bytes_.replacements);
  } else if (file.kind == BundleFile::Kind::JSON) {
    AddJson("", ParsedJson(file.content));
  }
}

std::string BundleRedaction::RedactedHomePath(const std::string& path) const {
  // The agent's own files have no personal names.
  if (boost::starts_with(path, folder_.string())) {
    return RedactedPath(path, bytes_.replacements, nullptr);
  }
  bool isPersonal = false;
  return RedactedPath(path, bytes_.replacements, &isPersonal);
}

/// Words with the escapes of a URI are read without them.
std::string BundleRedaction::RedactedText(const std::string& text, int depth) const {
  static constexpr std::string_view BLANKS = " \t\r\n\"'<>"sv;
  std::string result;
  std::size_t done = 0;
  std::size_t next = 0;
  for (auto at = text.find('%'); at != std::string::npos; at = text.find('%', next)) {
    const std::size_t begin = std::max(done, text.find_last_of(BLANKS, at) + 1);
    next = std::min(text.find_first_of(BLANKS, at), text.size());
    const std::string plain = FromPercent(text.substr(begin, next - begin));
    if (plain.size() == next - begin || !IsText(plain) || depth == MAX_DEPTH) continue;
    const std::string redacted = RedactedText(plain, depth + 1);
    if (redacted == plain) continue;
    result += RedactedPlain(text.substr(done, begin - done), depth) + ToPercent(redacted);
    done = next;
  }
  return result + RedactedPlain(text.substr(done), depth);
}

/// Parts in Base64 or hexadecimal digits; what is in them and cannot be read becomes unreadable.
std::string BundleRedaction::RedactedParts(const std::string& text, int depth) const {
  std::string result = text;
  const auto replace = [&](std::size_t begin, std::size_t length, const std::string& bytes,
                           const auto& encode) {
    const std::string part = text.substr(begin, length);
    if (IsText(bytes)) {
      const std::string redacted = RedactedText(bytes, depth + 1);
      if (redacted != bytes) result.replace(begin, length, encode(redacted, part));
    } else if (IsOpaque(bytes)) {
      result.replace(begin, length, standIns_.OfText(part));
    }
  };
  ForEachBase64Part(text, [&](std::size_t begin, std::size_t length) {
    replace(begin, length, FromAnyBase64(text.substr(begin, length)), ToAnyBase64);
  });
  ForEachDataPart(text, [&](std::size_t begin, std::size_t length) {
    replace(begin, length, FromBase64(text.substr(begin, length)), ToBase64);
  });
  ForEachHexPart(text, [&](std::size_t begin, std::size_t length) {
    replace(begin, length, FromHex(text.substr(begin, length)), ToHex);
  });
  return result;
}

std::string BundleRedaction::RedactedLine(const std::string& line) const {
  if (line.find('\0') != std::string::npos) return "(a line that is no text)";
  std::string result;
  std::size_t done = 0;
  const auto addWords = [&](std::size_t end) {
    result += RedactedValue(Kind::WORDS, line.substr(done, end - done), bytes_.replacements);
    done = end;
  };
  for (auto at = line.find('/'); at != std::string::npos; at = line.find('/', at)) {
    const bool isHome = line.compare(at, 7, "/Users/") == 0 || line.compare(at, 6, "/home/") == 0 ||
                        line.compare(at, 9, "/Volumes/") == 0;
    if (!isHome) {
      ++at;
      continue;
    }
    addWords(at);
    done = EndOfPath(line, at);
    result += RedactedHomePath(line.substr(at, done - at));
    at = done;
  }
  addWords(line.size());
  return result;
}

std::string BundleRedaction::RedactedPlain(const std::string& text, int depth) const {
  const std::string parts = depth < MAX_DEPTH ? RedactedParts(text, depth) : text;
  std::string result;
  for (std::size_t at = 0; at < parts.size();) {
    std::size_t end = std::min(parts.find('\n', at), parts.size());
    // A long line is cut between words.
    if (end - at > PIECE) end = std::min(end, parts.find_first_of(" ,;", at + PIECE));
    result += RedactedLine(parts.substr(at, end - at));
    if (end < parts.size()) result += parts[end];
    at = end + 1;
  }
  return bytes_.Apply(result);
}

std::string BundleRedaction::RedactedString(const std::string& key, const std::string& text) const {
  const auto kind = KindOfOwnKey(key);
  if (kind) return RedactedValue(*kind, text, bytes_.replacements);
  if (boost::starts_with(text, "/") && text.find('\n') == std::string::npos) {
    return RedactedHomePath(text);
  }
  return RedactedText(text);
}

OrderedJson BundleRedaction::RedactedJson(const std::string& key, const OrderedJson& value) const {
  if (value.is_string()) return RedactedString(key, value);
  if (value.is_number() && KindOfKey(key) == Kind::SERIAL) {
    return OrderedJson::parse(standIns_.OfNumber(value.dump(), 1'000'000'000), nullptr, false);
  }
  if (!value.is_structured()) return value;
  OrderedJson result = value.is_object() ? OrderedJson::object() : OrderedJson::array();
  for (const auto& item : value.items()) {
    if (value.is_object()) {
      result[RedactedText(item.key())] = RedactedJson(item.key(), item.value());
    } else {
      result.push_back(RedactedJson(key, item.value()));
    }
  }
  return result;
}

std::string BundleRedaction::Redacted(const BundleFile& file) const {
  std::string text;
  if (file.kind == BundleFile::Kind::DOCUMENT) {
    json document = ParsedDocument(file.content);
    if (document.is_object()) {
      RedactDocument(document, bytes_.replacements);
      text = Common::MaskedDocument::Unmask(document.dump()) + "\n";
    }
  } else if (file.kind == BundleFile::Kind::JSON) {
    const OrderedJson value = ParsedJson(file.content);
    if (!value.is_discarded()) text = JsonLine(RedactedJson("", value));
  }
  if (text.empty()) text = RedactedText(file.content);
  for (const std::string& secret : secrets_) {
    if (text.find(secret) != std::string::npos) {
      throw std::runtime_error("it would hold a secret of the agent");
    }
  }
  return text;
}

}  // namespace Norvik::Host
