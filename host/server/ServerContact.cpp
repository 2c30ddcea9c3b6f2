#include "host/server/ServerContact.h"

#include <nlohmann/json.hpp>
#include <utility>

#include "common/text/Text.h"
#include "host/server/Attempt.h"

namespace Norvik::Host {

namespace {

using std::chrono::system_clock;
using Json = nlohmann::ordered_json;

constexpr std::chrono::minutes BETWEEN_STORES(1);
constexpr std::size_t LONGEST_REASON = 1024;

Json ToJson(const ContactState::Time& time) {
  return time ? Json(system_clock::to_time_t(*time)) : Json();
}

ContactState::Time TimeOf(const Json& json) {
  if (!json.is_number_integer()) return boost::none;
  return system_clock::from_time_t(json.get<std::time_t>());
}

}  // namespace

std::string ToText(const ContactState& state) {
  const Json json = {{"contact", ToJson(state.contact)},
                     {"failed", ToJson(state.failed)},
                     {"error", state.error},
                     {"nextTry", ToJson(state.nextTry)},
                     {"refused", state.refused}};
  return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

boost::optional<ContactState> ParseContactState(const std::string& text) {
  try {
    const Json json = Json::parse(text);
    return ContactState{TimeOf(json.at("contact")), TimeOf(json.at("failed")), json.at("error"),
                        TimeOf(json.at("nextTry")), json.at("refused")};
  } catch (const std::exception&) {
    return boost::none;
  }
}

ServerContact::ServerContact(const std::string& stored, Store store,
                             std::shared_ptr<const Clock> clock)
    : store_(std::move(store)),
      clock_(std::move(clock)),
      state_(ParseContactState(stored).get_value_or({})),
      stored_(stored),
      isFailing_(state_.failed && (!state_.contact || *state_.failed > *state_.contact)) {}

void ServerContact::Record(const std::string& kind, const Attempt& attempt) {
  bool isNew = false;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    const bool hasFailed = attempt.result != Attempt::Result::Acknowledged;
    isNew = std::exchange(isFailing_, hasFailed) != hasFailed || (!hasFailed && !state_.contact);
    (hasFailed ? state_.failed : state_.contact) = clock_->Now();
    if (hasFailed) state_.error = Common::OnOneLine(attempt.reason.substr(0, LONGEST_REASON));
    if (attempt.result == Attempt::Result::Refused) {
      isNew |= state_.refused.count(kind) == 0;
      state_.refused[kind] = state_.error;
    } else if (!hasFailed) {
      isNew |= state_.refused.erase(kind) != 0;
    }
  }
  StoreIfDue(isNew);
}

void ServerContact::SetNextTry(boost::optional<std::chrono::nanoseconds> wait) {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    state_.nextTry.reset();
    if (wait) {
      state_.nextTry = clock_->Now() + std::chrono::duration_cast<system_clock::duration>(*wait);
    }
  }
  StoreIfDue(false);
}

void ServerContact::Flush() { StoreIfDue(true); }

/// Without `mutex_` while the text is stored: the database may block a writer.
void ServerContact::StoreIfDue(bool now) {
  if (!store_) return;
  const std::lock_guard<std::mutex> storing(storeMutex_);
  std::string text;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto time = clock_->Steady();
    if (!now && storedAt_ && time - *storedAt_ < BETWEEN_STORES) return;
    text = ToText(state_);
    if (text == stored_) return;
    storedAt_ = time;
    stored_ = text;
  }
  store_(text);
}

ContactState ServerContact::State() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return state_;
}

}  // namespace Norvik::Host
