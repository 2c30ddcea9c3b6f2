#include "host/redaction/DocumentRedaction.h"

#include "host/redaction/DocumentProperties.h"
#include "host/redaction/SensitiveForms.h"
#include "host/redaction/ValueRedaction.h"
#include "json/Numbers.h"

namespace Norvik::Host {

namespace {

using nlohmann::json;
using Kind = SensitiveKind;

/// What a system calls its own accounts is no person's name.
bool IsSystemAccount(const std::string& section, const json& record) {
  if (section != "user" || !record.contains("userName")) return false;
  const json& name = record["userName"];
  return name.is_string() && IsCommonName(name);
}

/// Calls `take` with each value that is neither an object nor a list, and with what it is.
/// @param section key of what the value's record is in
template <class Json, class Take>
void ForEachValue(const std::string& section, const std::string& key, Json& value,
                  const Take& take) {
  if (value.is_object()) {
    const bool isSystems = IsSystemAccount(key, value);
    for (const auto& item : value.items()) {
      if (isSystems && item.key() == "description") continue;
      ForEachValue(key, item.key(), item.value(), take);
    }
  } else if (value.is_array()) {
    for (Json& item : value) ForEachValue(section, key, item, take);
  } else {
    take(section, key, value);
  }
}

Kind KindOf(const std::string& section, const std::string& key) {
  return KindOfProperty(section, key).value_or(Kind::TEXT);
}

std::string RedactedPosition(const json& value, const std::string& key, const StandIns& standIns) {
  const std::string text =
      value.is_number_float() ? ::json::FloatingText(value.get<double>()) : value.dump();
  return standIns.OfNumber(text, key == "latitude" ? 90 : key == "longitude" ? 180 : 10'000);
}

}  // namespace

void ProtectHarmless(const json& document, Replacements& replacements) {
  ForEachValue("", "", document, [&](const auto& section, const auto& key, const json& value) {
    if (!value.is_string()) return;
    const std::string text = value;
    const bool isProgram = section == "software" && key == "name";
    // A longer name of a program may have a person's in it.
    const bool isWord = isProgram && text.find(' ') == std::string::npos;
    if (isWord || KindOf(section, key) == Kind::HARMLESS) replacements.Protect(text);
  });
}

void AddValuesOfDocument(const json& document, Replacements& replacements) {
  ForEachValue("", "", document, [&](const auto& section, const auto& key, const json& value) {
    if (!value.is_string()) return;
    AddSensitive(KindOf(section, key), value, replacements);
  });
}

void RedactDocument(json& document, const Replacements& replacements) {
  ForEachValue("", "", document, [&](const auto& section, const auto& key, json& value) {
    const Kind kind = KindOf(section, key);
    if (kind == Kind::POSITION && value.is_number()) {
      value = json::parse(RedactedPosition(value, key, replacements.GetStandIns()));
    } else if (value.is_string()) {
      value = RedactedValue(kind, value, replacements);
    }
  });
}

void AddUsersOfPaths(const std::string& document, Replacements& replacements) {
  std::string last;
  ForEachHomeFolder(document, [&](Kind kind, const std::string& user) {
    if (user != last) AddSensitive(kind, user, replacements);
    last = user;
  });
}

void FileRedaction::Redact(std::string& folder, json& file) {
  // Mostly it has several files.
  if (folder != folder_ || redacted_.empty()) {
    folder_ = folder;
    redacted_ = RedactedPath(folder, replacements_, &isPersonal_);
  }
  folder = redacted_;
  for (const auto& item : file.items()) {
    json& value = item.value();
    if (item.key() == "filename" && value.is_string()) {
      const std::string name = value;
      value = isPersonal_ ? replacements_.GetStandIns().OfText(name)
                          : RedactedValue(Kind::WORDS, name, replacements_);
      continue;
    }
    ForEachValue("files", item.key(), value, [&](const auto& section, const auto& key, json& text) {
      if (text.is_string()) text = RedactedValue(KindOf(section, key), text, replacements_);
    });
  }
}

}  // namespace Norvik::Host
