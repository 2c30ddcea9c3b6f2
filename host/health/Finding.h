#pragma once

#include <boost/optional.hpp>
#include <string>

namespace Norvik::Host {

/// From the best to the worst.
enum class Outcome { OK, INFORMATION, UNKNOWN, WARNING, ERROR };

/// "ok", "information", "unknown", "warning", "error"
const char* NameOf(Outcome outcome);

/// What a check has found.
struct Finding {
  Outcome outcome = Outcome::OK;
  std::string text;  ///< a clause, such as "the folder /x belongs to user 501"
  /// What to do; empty: what the check's table says.
  std::string remedy = {};
  /// The keys of the document that are empty because of it, separated by ", "; "*" is all of them.
  /// Without a value: what the check's table says, or nothing for information.
  boost::optional<std::string> keys = {};
};

/// The remedy where an agent has left nothing yet.
inline constexpr char START_AGENT[] = "start the agent once, or name its data folder by --data";

/// A finding of a path that this user may not read, or not even see.
Finding UnreadableFinding(const std::string& path);

}  // namespace Norvik::Host
