#include <ostream>

#include "cli/commands/Commands.h"
#include "cli/commands/DocumentFile.h"
#include "documents/DocumentText.h"

namespace Norvik::Cli {

using namespace Host;

int RunOpen(const CommandLine& line, std::ostream& output, std::ostream& /*errors*/) {
  // The library's log would mix with the answer.
  const LoggerScope silence(std::make_shared<ListeningLogger>(nullptr, LogListener()));
  const Documents::NamedText document{line.file.string(), ReadDocument(line.file, line)};
  if (line.pretty) {
    output << Documents::Indented(document);
    return EXIT_DONE;
  }
  // What was sealed is a document. Any other file may be anything.
  if (!IsSealed(line.file)) Documents::ParseDocument(document);
  output << document.text;
  return EXIT_DONE;
}

}  // namespace Norvik::Cli
