#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "forge/Random.h"

namespace Norvik::Forge {

using Json = nlohmann::json;

/// A program that some Macs have.
struct Program {
  std::string name;
  std::string maker;
  std::string signedBy;
  std::string serviceName;  ///< of the daemon that comes with it; empty: none
  double share;             ///< of the Macs
  std::string version;      ///< about that of day 0
  std::string step;         ///< what a release increments: major, minor or patch
  double days;              ///< between two releases
};

/// The tables of profiles.json. A row is an object with the columns as keys; a row with "share" is
/// drawn with that weight.
class Profiles {
 public:
  Profiles();

  const Json& Rows(const char* table) const { return tables_.at(table); }
  const std::vector<Program>& Programs() const { return programs_; }

 private:
  Json tables_;
  std::vector<Program> programs_;
};

/// A row of a table, by the weights.
const Json& Drawn(const Json& rows, Random random);
/// Any element of a list.
const Json& AnyOf(const Json& list, Random random);

/// The version that is `releases` after another one: "4.2.5" is followed by "4.3.0".
std::string LaterVersion(const std::string& version, const std::string& step,
                         std::int64_t releases);

}  // namespace Norvik::Forge
