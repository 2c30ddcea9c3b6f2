#pragma once

#include <boost/filesystem/path.hpp>
#include <boost/optional.hpp>
#include <chrono>
#include <string>

#include "cli/commands/Rendering.h"
#include "common/configuration/CommunicationsInfo.h"
#include "host/identity/AgentIdentity.h"

namespace Norvik::Cli {

/// {"seconds", "time"}
OrderedJson TimeToJson(std::chrono::system_clock::time_point time);
/// "2026-01-31T23:59:58Z (2 hours ago)", or "never" for null.
std::string AgeText(const OrderedJson& time, std::chrono::system_clock::time_point now);

/// How the connection to the server goes, under "server", "port", "enrolled" and "contact".
/// @param contact a `ContactState` as text; empty: none is known
OrderedJson ServerState(const Common::CommunicationsInfo& server,
                        const boost::optional<Host::Identity>& identity,
                        const std::string& contact);

// What waits for the server: {"count", "bytes", "oldest"}.
/// @param outbox its files: {"bytes", "seconds"}
OrderedJson WaitingDocuments(const OrderedJson& outbox);
/// Throws a subclass of `std::exception` if the states in the data folder cannot be read.
OrderedJson WaitingStates(const boost::filesystem::path& dataFolder);
/// The same for their answers.
OrderedJson WaitingAnswers(const boost::filesystem::path& dataFolder);

/// The lines for people about both, from the status.
std::string ServerLines(const OrderedJson& status, std::chrono::system_clock::time_point now);

}  // namespace Norvik::Cli
