#include "host/AgentIdentity.h"

#include <algorithm>
#include <boost/filesystem/operations.hpp>
#include <boost/uuid/random_generator.hpp>
#include <boost/uuid/string_generator.hpp>
#include <boost/uuid/uuid_io.hpp>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "host/TextFile.h"
#include "platform/FileSystem.h"
#include "platform/ReplacementFile.h"

namespace Norvik::Host {

namespace {

namespace fs = boost::filesystem;

std::string RandomUuid() {
  boost::uuids::random_generator generator;
  return to_string(generator());
}

AgentIdentity NewIdentity() {
  std::string token = RandomUuid() + RandomUuid();
  token.erase(std::remove(token.begin(), token.end(), '-'), token.end());
  return {RandomUuid(), token, ""};
}

AgentIdentity Parse(const std::string& text) {
  const auto node = nlohmann::json::parse(text);
  AgentIdentity identity{node.at("identifier"), node.at("token"), node.value("server", "")};
  boost::uuids::string_generator()(identity.identifier);
  return identity;
}

std::string ToText(const AgentIdentity& identity) {
  nlohmann::ordered_json node = {{"identifier", identity.identifier}, {"token", identity.token}};
  if (!identity.server.empty()) node["server"] = identity.server;
  return node.dump(2) + "\n";
}

}  // namespace

boost::optional<AgentIdentity> ReadIdentity(const fs::path& file) {
  if (!fs::exists(file)) return boost::none;
  const std::string text = ReadTextFile(file.string());
  try {
    return Parse(text);
  } catch (const std::exception&) {
    throw std::runtime_error("the identity in " + file.string() +
                             " is damaged; without the file a new one would be made");
  }
}

AgentIdentity ReadOrMakeIdentity(const fs::path& file) {
  if (const auto identity = ReadIdentity(file)) return *identity;
  AgentIdentity made = NewIdentity();
  const std::string text = ToText(made);
  Platform::ReplacementFile target(file.string());
  Platform::WriteAll(target.Descriptor(), text.data(), text.size());
  if (target.CommitIfAbsent()) return made;
  return ReadIdentity(file).value();
}

void WriteIdentity(const fs::path& file, const AgentIdentity& identity) {
  WriteTextFile(file, ToText(identity));
}

}  // namespace Norvik::Host
