#include "host/recording/SensitiveValues.h"

#include <nlohmann/json.hpp>
#include <string_view>

#include "host/recording/SensitiveKind.h"

namespace Norvik::Host {

namespace {

using nlohmann::json;
using Kind = SensitiveKind;

struct SensitiveKey {
  std::string_view section;  ///< of the document; empty: any
  std::string_view key;
  Kind kind;
};

constexpr SensitiveKey DOCUMENT_KEYS[] = {
    {"", "serial", Kind::SERIAL},       {"", "serialNumber", Kind::SERIAL},
    {"", "assetTag", Kind::SERIAL},     {"device", "name", Kind::HOST},
    {"device", "alias", Kind::HOST},    {"device", "domain", Kind::SEARCH_DOMAIN},
    {"device", "userName", Kind::NAME}, {"device", "workGroup", Kind::NAME},
    {"", "server", Kind::HOST},         {"", "uuid", Kind::HEX},
    {"", "macAddress", Kind::HEX},      {"", "address", Kind::ADDRESS},
    {"", "gateways", Kind::ADDRESS},    {"", "dnsServers", Kind::ADDRESS},
    {"", "dhcpServers", Kind::ADDRESS},
};

void AddTexts(Kind kind, const json& node, Replacements& replacements) {
  if (node.is_string()) AddSensitive(kind, node.get<std::string>(), replacements);
  if (!node.is_array()) return;
  for (const json& item : node) AddTexts(kind, item, replacements);
}

void AddSection(const std::string& section, const json& node, Replacements& replacements) {
  if (node.is_array()) {
    for (const json& item : node) AddSection(section, item, replacements);
  }
  if (!node.is_object()) return;
  for (const auto& [key, value] : node.items()) {
    for (const SensitiveKey& known : DOCUMENT_KEYS) {
      if (known.key != key || (!known.section.empty() && known.section != section)) continue;
      AddTexts(known.kind, value, replacements);
    }
    AddSection(section, value, replacements);
  }
}

}  // namespace

void AddValuesOfDocument(const std::string& document, Replacements& replacements) {
  const json root = json::parse(document, nullptr, /*allow_exceptions=*/false);
  if (!root.is_object()) return;
  for (const auto& [section, node] : root.items()) AddSection(section, node, replacements);
}

void AddValuesOfFacts(const std::string& file, const std::string& content,
                      Replacements& replacements) {
  const json root = json::parse(content, nullptr, /*allow_exceptions=*/false);
  if (!root.is_object()) return;
  if (file == "sysctl.json")
    AddSensitive(Kind::HOST, root.value("kern.hostname", ""), replacements);
  if (file != "accounts.json") return;
  for (const json& user : root.at("users")) {
    const std::string name = user.at("name");
    if (IsCommonName(name)) continue;
    AddSensitive(Kind::NAME, name, replacements);
    AddSensitive(Kind::NAME, user.at("fullName"), replacements);
  }
  for (const json& login : root.at("logins")) {
    AddSensitive(Kind::NAME, login.at("user"), replacements);
    AddSensitive(Kind::HOST, login.at("host"), replacements);
  }
}

}  // namespace Norvik::Host
