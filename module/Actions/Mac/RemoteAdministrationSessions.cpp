#include <CoreServices/CoreServices.h>
#include <string.h>

#include <boost/format.hpp>
#include <cerrno>
#include <chrono>
#include <cstdint>

#include "common/log/Logger.h"
#include "common/text/Dates.h"
#include "common/text/Text.h"
#include "module/Actions/Mac/RemoteAdministration.h"
#include "module/Actions/Mac/RemoteRequest.h"
#include "platform/FourCharacters.h"
#include "platform/LoginRecords.h"
#include "platform/SystemChanges.h"

namespace Norvik::KOB {

namespace {

using Platform::CharactersOf;
using Platform::FourCharacters;

constexpr std::uint32_t EVENT_CLASS = FourCharacters("aevt");
constexpr std::uint32_t LOG_OUT = FourCharacters("rlgo");
constexpr std::uint32_t SHUT_DOWN = FourCharacters("shut");
constexpr std::uint32_t RESTART = FourCharacters("rest");
constexpr std::uint32_t PROCESS_NUMBER_TYPE = FourCharacters("psn ");
/// High and low word of the process number at which the system itself receives events.
constexpr std::uint32_t SYSTEM_PROCESS[] = {0, 1};

struct EventDescriptor {
  EventDescriptor() = default;
  EventDescriptor(const EventDescriptor&) = delete;
  EventDescriptor& operator=(const EventDescriptor&) = delete;
  ~EventDescriptor() { ::AEDisposeDesc(&value); }

  AEDesc value{FourCharacters("null"), nullptr};
};

/// 0, or the status of the step that failed.
OSStatus SendAppleEventToSystemProcess(unsigned int eventId) {
  EventDescriptor event;
  {
    EventDescriptor address;
    OSStatus status =
        ::AECreateDesc(PROCESS_NUMBER_TYPE, SYSTEM_PROCESS, sizeof(SYSTEM_PROCESS), &address.value);
    if (status != noErr) return status;
    status = ::AECreateAppleEvent(EVENT_CLASS, eventId, &address.value, kAutoGenerateReturnID,
                                  kAnyTransactionID, &event.value);
    if (status != noErr) return status;
  }
  return Platform::GetSystemChanges()->SendAppleEvent(
      event.value, CharactersOf(EVENT_CLASS) + " " + CharactersOf(eventId));
}

template <std::size_t size>
std::string FieldText(const char (&field)[size]) {
  return Common::EncodeUtf8Characters(Platform::LoginRecords::TextOf(field));
}

bool IsTerminal(const std::string& line) {
  for (const char* word : {"pts", "tty", "console"}) {
    if (line.find(word) != std::string::npos) return true;
  }
  return false;
}

}  // namespace

Common::ActionResponse RemoteAdministration::ListSessions(Parameters&) {
  NORVIK_SCOPE();
  Response response;
  AddTitles(response.table,
            {"Id", "Status", "UserName", "DomainName", "ClientName", "StationName", "Type"});
  const std::string system = Platform::SystemName();
  const std::string host = Platform::HostName();
  Platform::LoginRecords records;
  while (const utmpx* const entry = records.Next()) {
    const std::string line = FieldText(entry->ut_line);
    if (!IsTerminal(line)) continue;
    AddTextRow(response.table, {std::to_string(entry->ut_pid), "1", FieldText(entry->ut_user),
                                FieldText(entry->ut_host), system, host, line});
  }
  return response;
}

Common::ActionResponse RemoteAdministration::CloseSession(Parameters& parameters) {
  NORVIK_SCOPE();
  Response response;
  if (!Requires(parameters, "id", response)) return response;
  // Read but deliberately not used: the event reaches the one session at the screen.
  ReadText(parameters, "id");
  if (SendAppleEventToSystemProcess(LOG_OUT) != 0) response.text = "ERROR closeSession";
  return response;
}

Common::ActionResponse RemoteAdministration::Shutdown(Parameters& parameters) {
  NORVIK_SCOPE();
  return ChangePower(parameters, SHUT_DOWN, "ERROR Shutdown");
}

Common::ActionResponse RemoteAdministration::Restart(Parameters& parameters) {
  NORVIK_SCOPE();
  return ChangePower(parameters, RESTART, "ERROR Restart");
}

Common::ActionResponse RemoteAdministration::ChangePower(Parameters& parameters, unsigned int event,
                                                         const char* failure) {
  Response response;
  // Reported first, because there may be no time left after the event; deliberately again below.
  ReportFinished(parameters);
  if (SendAppleEventToSystemProcess(event) != 0) {
    Fail(parameters, response, failure);
  } else {
    ReportFinished(parameters);
  }
  return response;
}

Common::ActionResponse RemoteAdministration::SynchronizeTime(Parameters& parameters) {
  NORVIK_SCOPE();
  Response response;
  ReportStarted(parameters);
  if (!Requires(parameters, "date", response)) {
    // Deliberately finished, not failed: the server does not repeat a malformed request.
    ReportFinished(parameters);
    return response;
  }
  const std::string date = ReadText(parameters, "date");
  NORVIK_DETAIL(boost::format("The time  to set is: %1%") % date);
  timeval time{};
  time.tv_sec =
      std::chrono::system_clock::to_time_t(Common::UTCStringToTimePoint(date, "%Y%m%d%H%M%S"));
  NORVIK_DETAIL(boost::format("Hora %1%") % std::to_string(time.tv_sec));
  const int result = Platform::GetSystemChanges()->SetClock(time);
  if (result == 0) {
    ReportFinished(parameters);
    return response;
  }
  const std::string failure =
      (boost::format("Operation failed. Error code: %1%. System message: %2%") %
       std::to_string(result) % ::strerror(errno))
          .str();
  NORVIK_ERROR(failure);
  Fail(parameters, response, failure);
  return response;
}

}  // namespace Norvik::KOB
