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

struct ForgeCall {
  std::string help;  ///< to be printed in place of a command; or empty
  std::string command;
  DocumentsOptions documents;
};

/// Throws `UsageError`.
ForgeCall ParseForgeCall(const std::vector<std::string>& arguments);

}  // namespace Norvik::Forge
