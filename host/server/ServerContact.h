#pragma once

#include <boost/optional.hpp>
#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "host/actions/Clock.h"

namespace Norvik::Host {

struct Attempt;

/// The key of the agent data that keeps a `ContactState` as text.
inline constexpr char SERVER_CONTACT_KEY[] = "SERVER_CONTACT";

/// How the connection to the server goes, for people.
struct ContactState {
  using Time = boost::optional<std::chrono::system_clock::time_point>;

  Time contact;       ///< of the last request that the server answered as it has to
  Time failed;        ///< of the last one that it did not
  std::string error;  ///< why; empty if none has failed
  Time nextTry;       ///< of the delivery, after a failure
  /// What the server does not want while it works, and why: the enrolment, or a kind of items.
  std::map<std::string, std::string> refused;
};

/// One line of JSON. Times are seconds since the epoch.
std::string ToText(const ContactState& state);
/// Empty if the text is no such state.
boost::optional<ContactState> ParseContactState(const std::string& text);

/// Follows the requests to the server, and stores what becomes of them: at once if the connection
/// begins to work or to fail, and otherwise at most once a minute. Safe on any thread.
class ServerContact {
 public:
  using Store = std::function<void(const std::string& text)>;

  /// Stores nothing.
  ServerContact() = default;
  /// @param stored the text from before a restart; may be empty
  ServerContact(const std::string& stored, Store store,
                std::shared_ptr<const Clock> clock = std::make_shared<Clock>());
  ServerContact(const ServerContact&) = delete;
  ServerContact& operator=(const ServerContact&) = delete;

  /// @param kind what was sent: the extension of a file, or what logs call it
  void Record(const std::string& kind, const Attempt& attempt);
  /// @param wait none: the delivery waits for nothing
  void SetNextTry(boost::optional<std::chrono::nanoseconds> wait);
  /// Stores what is not stored yet.
  void Flush();
  ContactState State() const;

 private:
  void StoreIfDue(bool now);

  const Store store_;
  const std::shared_ptr<const Clock> clock_ = std::make_shared<Clock>();
  std::mutex storeMutex_;  ///< held while the text is stored; locked before `mutex_`
  mutable std::mutex mutex_;
  ContactState state_;
  std::string stored_;
  bool isFailing_ = false;
  boost::optional<std::chrono::steady_clock::time_point> storedAt_;
};

}  // namespace Norvik::Host
