#include "host/redaction/SensitiveFacts.h"

#include <nlohmann/json.hpp>

#include "host/redaction/SensitiveKind.h"

namespace Norvik::Host {

using nlohmann::json;
using Kind = SensitiveKind;

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
