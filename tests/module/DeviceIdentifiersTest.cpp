#include "module/DeviceIdentifiers.h"

#include "support/Json.h"
#include "support/Test.h"

namespace Norvik::KOB {
namespace {

using namespace Tests;

const std::map<std::string, IdType> TYPES = {{"asset", IdType::ASSET}, {"ip", IdType::IP},
                                             {"mac", IdType::MAC},     {"mix", IdType::MIX},
                                             {"pc", IdType::PC},       {"serial", IdType::SERIAL}};

/// The identifier of each type for this setup and these adapters, and the logged errors.
Json IdentifiersOf(const Json& setup, const Json& adapters, const std::string& identifier) {
  std::list<Common::NetworkAdapterInfo> records;
  for (const Json& adapter : adapters) records.emplace_back(tests::ParseJson(adapter.dump()));
  const Common::SetupInfo record(tests::ParseJson(setup.dump()));
  const LogCapture log;
  Json found;
  for (const auto& [name, type] : TYPES) {
    found[name] = CreateIdFunctionsMap().at(type)({record, records, "mac: 1", identifier});
  }
  found["errors"] = log.Texts(2);
  return found;
}

TEST(DeviceIdentifiersTest, EachTypeUsesItsOwnFacts) {
  ExpectRows(DataOf("module/device-identifiers.json"), IdentifiersOf);
}

}  // namespace
}  // namespace Norvik::KOB
