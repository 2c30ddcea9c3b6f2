#include "host/identity/AgentIdentity.h"

#include <algorithm>
#include <boost/filesystem/operations.hpp>
#include <boost/uuid/random_generator.hpp>
#include <boost/uuid/string_generator.hpp>
#include <boost/uuid/uuid_io.hpp>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <utility>

#include "common/files/TextFile.h"
#include "platform/FileSystem.h"
#include "platform/ReplacementFile.h"

namespace Norvik::Host {

namespace {

using Common::ReadTextFile;
using Common::WriteTextFile;
namespace fs = boost::filesystem;

std::string RandomUuid() {
  boost::uuids::random_generator generator;
  return to_string(generator());
}

Identity NewIdentity(const std::string& platformUuid) {
  std::string token = RandomUuid() + RandomUuid();
  token.erase(std::remove(token.begin(), token.end(), '-'), token.end());
  return {RandomUuid(), token, "", platformUuid};
}

Identity Parse(const std::string& text) {
  const auto node = nlohmann::json::parse(text);
  Identity identity{node.at("identifier"), node.at("token"), node.value("server", ""),
                    node.value("platformUuid", "")};
  boost::uuids::string_generator()(identity.identifier);
  return identity;
}

std::string ToText(const Identity& identity) {
  nlohmann::ordered_json node = {{"identifier", identity.identifier}, {"token", identity.token}};
  if (!identity.server.empty()) node["server"] = identity.server;
  if (!identity.platformUuid.empty()) node["platformUuid"] = identity.platformUuid;
  return node.dump(2) + "\n";
}

Identity ReadOrMake(const fs::path& file, const std::string& platformUuid) {
  if (auto identity = ReadIdentity(file)) {
    if (identity->platformUuid.empty() && !platformUuid.empty()) {
      identity->platformUuid = platformUuid;
      WriteTextFile(file, ToText(*identity));
    }
    return *identity;
  }
  Identity made = NewIdentity(platformUuid);
  const std::string text = ToText(made);
  Platform::ReplacementFile target(file.string());
  Platform::WriteAll(target.Descriptor(), text.data(), text.size());
  if (target.CommitIfAbsent()) return made;
  return ReadIdentity(file).value();
}

}  // namespace

boost::optional<Identity> ReadIdentity(const fs::path& file) {
  if (!fs::exists(file)) return boost::none;
  const std::string text = ReadTextFile(file.string());
  try {
    return Parse(text);
  } catch (const std::exception&) {
    throw std::runtime_error("the identity in " + file.string() +
                             " is damaged; if the file is removed, a new one is created");
  }
}

AgentIdentity::AgentIdentity(const fs::path& file, const std::string& platformUuid)
    : file_(file), identity_(ReadOrMake(file, platformUuid)) {}

Identity AgentIdentity::Get() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return identity_;
}

void AgentIdentity::Acknowledge(const std::string& server, const std::string& token) {
  const std::lock_guard<std::mutex> lock(mutex_);
  Identity next = identity_;
  next.token = token;
  next.server = server;
  WriteTextFile(file_, ToText(next));
  identity_ = std::move(next);
}

void AgentIdentity::Revoke() {
  const std::lock_guard<std::mutex> lock(mutex_);
  identity_.server.clear();
}

}  // namespace Norvik::Host
