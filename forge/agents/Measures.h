#pragma once

#include <cstddef>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "forge/agents/HttpLine.h"

namespace Norvik::Forge {

/// What simulated agents have seen of their server.
struct Measures {
  /// Requests of one kind.
  struct Requests {
    std::size_t succeeded = 0;
    std::size_t refused = 0;    ///< by a status that concerns only what was sent
    std::size_t postponed = 0;  ///< that agents have to send again
    std::vector<float> milliseconds;
  };

  std::size_t contacts = 0;  ///< that were to be made
  std::size_t completed = 0;
  std::size_t documents = 0;  ///< acknowledged
  std::size_t documentBytes = 0;
  std::size_t tasks = 0;  ///< that were answered
  std::size_t waits = 0;  ///< that the server asked for by Retry-After
  std::size_t connections = 0;
  std::vector<float> connectMilliseconds;
  std::map<std::string, Requests> requests;  ///< by kind
  std::map<std::string, std::size_t> problems;
  double seconds = 0;

  void Add(const std::string& kind, const HttpAnswer& answer);
  /// Whether everything that was to be sent has arrived.
  bool IsWhole() const;

  nlohmann::json AsJson() const;
  std::string AsText() const;
};

}  // namespace Norvik::Forge
