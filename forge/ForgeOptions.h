#pragma once

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace Norvik::Forge {

/// The call is wrong; the text says what is, on one line.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Which Macs, and which of their days.
struct FleetOptions {
  std::uint64_t seed = 1;
  unsigned int first = 1;  ///< number of the first Mac
  unsigned int macs = 1;
  int days = 1;
  std::size_t files = 0;
  std::int64_t start = 0;  ///< day 0, in seconds since the epoch
};

struct DocumentsOptions {
  FleetOptions fleet;
  std::string output;  ///< a folder, or "-"
  std::string keys;    ///< folder of the key to seal to; empty: plain documents
};

struct AgentsOptions {
  FleetOptions fleet;
  std::string server;     ///< https://HOST:PORT
  std::string caFile;     ///< empty: the authorities of the system
  std::string secret;     ///< that lets agents enrol; empty: none
  std::string keys;       ///< folder of the server's public key
  std::string documents;  ///< folder of sealed documents; empty: they are made
  std::string state;      ///< file that keeps enrolments between runs; empty: none
  bool prepare = false;   ///< make them before the first contact
  bool onlyTasks = false;
  double rate = 20;     ///< contacts that begin in a second
  double giveUp = 120;  ///< seconds after the beginning of the last contact
  double keepOpen = 0;  ///< seconds for which connections stay open after all contacts
  bool json = false;
};

struct ForgeCall {
  std::string help;  ///< to be printed in place of a command; or empty
  std::string command;
  DocumentsOptions documents;
  AgentsOptions agents;
};

/// Throws `UsageError`.
ForgeCall ParseForgeCall(const std::vector<std::string>& arguments);

}  // namespace Norvik::Forge
