#include <nlohmann/json.hpp>
#include <ostream>

#include "host/AgentProgram.h"
#include "host/DataFolder.h"
#include "host/commands/Commands.h"
#include "host/commands/DocumentFile.h"
#include "host/commands/Rendering.h"

namespace Norvik::Host {

int RunOpen(const CommandLine& line, std::ostream& output, std::ostream& /*errors*/) {
  // Only the answer is to be seen: nothing of the library's log.
  const LoggerScope silence(std::make_shared<ListeningLogger>(nullptr, LogListener()));
  std::string document = ReadSealedDocument(line.file, line.agent.dataFolder / KEY_FOLDER);
  if (line.pretty) document = OrderedJson::parse(document).dump(2) + "\n";
  output << document;
  return EXIT_DONE;
}

}  // namespace Norvik::Host
