#include <ostream>

#include "cli/commands/Commands.h"
#include "cli/commands/DocumentFile.h"
#include "documents/DocumentText.h"
#include "host/data/DataFolder.h"

namespace Norvik::Cli {

using namespace Host;

int RunOpen(const CommandLine& line, std::ostream& output, std::ostream& /*errors*/) {
  // The library's log would mix with the answer.
  const LoggerScope silence(std::make_shared<ListeningLogger>(nullptr, LogListener()));
  std::string document = ReadSealedDocument(line.file, line.agent.dataFolder / KEY_FOLDER);
  if (line.pretty) document = Documents::Indented({line.file.string(), document});
  output << document;
  return EXIT_DONE;
}

}  // namespace Norvik::Cli
