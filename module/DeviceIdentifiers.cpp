#include "module/DeviceIdentifiers.h"

#include <initializer_list>

#include "common/log/Logger.h"
#include "common/text/Text.h"

namespace Norvik::KOB {

namespace {

using Common::ToUtf8;

std::string FirstNonEmpty(std::initializer_list<std::string> texts, const char* errorText) {
  for (const std::string& text : texts) {
    if (!text.empty()) return text;
  }
  NORVIK_ERROR(errorText);
  return {};
}

}  // namespace

std::string IdentifierForAsset(const IdentifierFacts& facts) {
  return FirstNonEmpty({facts.setup.baseboard.assetTag, ToUtf8(facts.setup.chassis.assetTag)},
                       "Identifier for IdType::ASSET not found");
}

std::string IdentifierForSerial(const IdentifierFacts& facts) {
  return FirstNonEmpty(
      {facts.setup.system.serial, facts.setup.baseboard.serial, ToUtf8(facts.setup.chassis.serial)},
      "Identifier for IdType::SERIAL not found");
}

std::string IdentifierForMac(const IdentifierFacts& facts) {
  return Common::CharacterConverter::ChangeSpecialCharacter(ToUtf8(facts.hostName));
}

std::string IdentifierForPc(const IdentifierFacts& facts) { return IdentifierForMac(facts); }

// Deliberately, the loop conditions of the next two functions contradict each other or stop at
// once, so the result is empty: servers know machines of these types by an empty identifier.

std::string IdentifierForIP(const IdentifierFacts& facts) {
  std::string result;
  const auto& adapters = facts.networkAdapters;
  for (auto adapter = adapters.begin(); adapter != adapters.end() && facts.identifier.empty();
       ++adapter) {
    const auto& addresses = adapter->addresses;
    for (auto ip = addresses.begin(); ip != addresses.end() && !facts.identifier.empty(); ++ip) {
      if (ip->address != "0.0.0.0" && ip->address != "127.0.0.1") result = ip->address;
    }
  }
  return result;
}

std::string IdentifierForMix(const IdentifierFacts& facts) {
  std::string result;
  const auto& adapters = facts.networkAdapters;
  for (auto adapter = adapters.begin(); adapter != adapters.end() && !facts.identifier.empty();
       ++adapter) {
    if (adapter->macAddress != "000000000000") result = ToUtf8(facts.hostName) + "_";
  }
  return result;
}

std::map<IdType, std::function<std::string(const IdentifierFacts&)>> CreateIdFunctionsMap() {
  return {{IdType::ASSET, &IdentifierForAsset}, {IdType::IP, &IdentifierForIP},
          {IdType::MAC, &IdentifierForMac},     {IdType::MIX, &IdentifierForMix},
          {IdType::PC, &IdentifierForPc},       {IdType::SERIAL, &IdentifierForSerial}};
}

}  // namespace Norvik::KOB
