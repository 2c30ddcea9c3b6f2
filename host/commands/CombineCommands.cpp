#include <ostream>

#include "documents/ApplyIncrement.h"
#include "documents/Difference.h"
#include "host/AgentProgram.h"
#include "host/DataFolder.h"
#include "host/TextFile.h"
#include "host/commands/Commands.h"
#include "host/commands/DocumentFile.h"

namespace Norvik::Host {

namespace {

using Documents::NamedText;
using Combine = std::string (*)(const NamedText&, const NamedText&);

/// Writes what comes of the two documents that the line names.
int Combined(const CommandLine& line, std::ostream& output, Combine combine) {
  UseUtf8Characters();
  // Only the answer is to be seen: nothing of the library's log.
  const LoggerScope silence(std::make_shared<ListeningLogger>(nullptr, LogListener()));
  const auto read = [&](const boost::filesystem::path& file) {
    return NamedText{file.string(), ReadDocument(file, line.agent.dataFolder / KEY_FOLDER)};
  };
  const std::string document = combine(read(line.file), read(line.secondFile));
  if (line.outputFile.empty()) {
    output << document << std::endl;
  } else {
    WriteTextFile(line.outputFile, document);
  }
  return EXIT_DONE;
}

}  // namespace

int RunApply(const CommandLine& line, std::ostream& output, std::ostream& /*errors*/) {
  return Combined(line, output, Documents::ApplyIncrement);
}

int RunDiff(const CommandLine& line, std::ostream& output, std::ostream& /*errors*/) {
  return Combined(line, output, Documents::DifferenceOf);
}

}  // namespace Norvik::Host
