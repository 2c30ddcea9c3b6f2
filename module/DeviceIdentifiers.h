#pragma once

#include <wx/string.h>

#include <functional>
#include <list>
#include <map>
#include <string>

#include "common/records/NetworkAdapterInfo.h"
#include "common/records/SetupInfo.h"

namespace Norvik::KOB {

/// What a machine is known by.
enum class IdType : int { PC = 0, MAC = 1, MIX = 2, ASSET = 3, SERIAL = 4, IP = 5 };

struct IdentifierInfo {
  wxString identifier;
  IdType type = IdType::MAC;
};

/// The facts that identifiers are made of. Refers to them: they must outlive it.
struct IdentifierFacts {
  const Common::SetupInfo& setup;
  const std::list<Common::NetworkAdapterInfo>& networkAdapters;
  const wxString& hostName;
  const wxString& identifier;  ///< the one found before; empty at first
};

std::string IdentifierForAsset(const IdentifierFacts& facts);
std::string IdentifierForIP(const IdentifierFacts& facts);
std::string IdentifierForMac(const IdentifierFacts& facts);
std::string IdentifierForMix(const IdentifierFacts& facts);
std::string IdentifierForPc(const IdentifierFacts& facts);
std::string IdentifierForSerial(const IdentifierFacts& facts);

/// The functions above by type.
std::map<IdType, std::function<std::string(const IdentifierFacts&)>> CreateIdFunctionsMap();

}  // namespace Norvik::KOB
