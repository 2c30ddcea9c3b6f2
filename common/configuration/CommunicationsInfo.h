#pragma once

#include <algorithm>
#include <cstdint>
#include <deque>
#include <string>
#include <utility>

#include "common/Api.h"

namespace Norvik::Common {

/// Base of the parts of a configuration that host and module pass to each other.
struct NORVIK_COMMON_API ConfigurationInfoBase {
  ConfigurationInfoBase() = default;
  ConfigurationInfoBase(const ConfigurationInfoBase&) = default;
  ConfigurationInfoBase& operator=(const ConfigurationInfoBase&) = default;
  virtual ~ConfigurationInfoBase();
};

/// A queue that holds each text once, first in, first out. Not synchronised.
class UniqueQueue {
 public:
  /// False, without a change, if the queue holds the text already.
  bool Push(const std::string& text) {
    if (std::find(items_.begin(), items_.end(), text) != items_.end()) return false;
    items_.push_back(text);
    return true;
  }
  /// Removes and returns the oldest text; the queue must not be empty.
  std::string Pop() {
    std::string text = std::move(items_.front());
    items_.pop_front();
    return text;
  }
  bool Empty() const { return items_.empty(); }

 private:
  std::deque<std::string> items_;
};

/// How the agent reaches its server. 0 for a number of seconds means the host's default. A host may
/// ignore members that it has no use for.
struct NORVIK_COMMON_API CommunicationsInfo : ConfigurationInfoBase {
  std::uint64_t port = 0;  ///< the server's port in the low 16 bits
  std::uint64_t connectTimeoutSeconds = 0;
  std::uint64_t requestTimeoutSeconds = 0;
  std::uint64_t retrySeconds = 0;
  std::string address;  ///< the server's name or address; empty without a server
  std::string basePath;
  std::string proxy;
  std::string certificateFile;  ///< PEM; only its authorities are trusted. Empty: the machine's
  UniqueQueue alternates;       ///< further addresses
  std::string proxyUser;
  bool verifyPeer = true;
  std::string proxyPassword;
};

}  // namespace Norvik::Common
