#pragma once

#include <wx/string.h>

#include <functional>
#include <list>
#include <map>
#include <string>

#include "common/records/NetworkAdapterInfo.h"
#include "common/records/SetupInfo.h"

namespace Norvik::KOB {

/// The kinds of identifier by which a server knows a machine.
enum class IdType : int { PC = 0, MAC = 1, MIX = 2, ASSET = 3, SERIAL = 4, IP = 5 };

struct IdentifierInfo {
  wxString identifier;
  IdType type = IdType::MAC;
};

/// The facts from which an identifier is built. Holds references: the facts must outlive it.
struct IdentifierFacts {
  const Common::SetupInfo& setup;
  const std::list<Common::NetworkAdapterInfo>& networkAdapters;
  const wxString& hostName;
  const wxString& identifier;  ///< the one found earlier; empty at first
};

// Each returns the identifier in UTF-8, or "" if the facts hold none. The functions for `ASSET` and
// `SERIAL` log an error in that case.

std::string IdentifierForAsset(const IdentifierFacts& facts);
std::string IdentifierForIP(const IdentifierFacts& facts);
std::string IdentifierForMac(const IdentifierFacts& facts);
std::string IdentifierForMix(const IdentifierFacts& facts);
std::string IdentifierForPc(const IdentifierFacts& facts);
std::string IdentifierForSerial(const IdentifierFacts& facts);

/// The functions above, by type.
std::map<IdType, std::function<std::string(const IdentifierFacts&)>> CreateIdFunctionsMap();

}  // namespace Norvik::KOB
