#include "host/identity/CopiedDataFolder.h"

#include <boost/algorithm/string/predicate.hpp>
#include <boost/filesystem/operations.hpp>
#include <boost/format.hpp>

#include "common/database/AgentDatabase.h"
#include "common/files/Paths.h"
#include "common/log/Logger.h"
#include "host/data/DataFolder.h"
#include "host/history/DocumentHistory.h"
#include "host/identity/AgentIdentity.h"

namespace Norvik::Host {

using namespace Common;
namespace fs = boost::filesystem;

void ForgetOtherMachine(const fs::path& folder, const std::string& platformUuid) {
  const auto identity = ReadIdentity(folder / IDENTITY_FILE);
  if (!identity || identity->platformUuid.empty() || platformUuid.empty()) return;
  if (boost::iequals(identity->platformUuid, platformUuid)) return;
  NORVIK_WARNING(boost::format("The data folder comes from another machine: this agent gets a new "
                               "identity in place of %1%, and removes the documents and the "
                               "database of that machine") %
                 identity->identifier);
  for (const auto type : {Paths::WORK, Paths::PREVIOUS_INVENTORY, Paths::OUTBOX}) {
    fs::remove_all(Paths(type, false).AppData());
  }
  for (const char* const name : {HISTORY_FOLDER, ANSWERS_FOLDER}) fs::remove_all(folder / name);
  for (const char* const name :
       {STATUSES_FILE, SQLiteNames::SQLITE_CURRENT_DATABASE_NAME,
        SQLiteNames::SQLITE_WRITE_AHEAD_LOG_FILE, SQLiteNames::SQLITE_SHARED_MEMORY_FILE}) {
    fs::remove(folder / name);
  }
  // Last, so that an interrupted removal begins again.
  fs::remove(folder / IDENTITY_FILE);
}

}  // namespace Norvik::Host
