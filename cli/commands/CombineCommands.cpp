#include <ostream>

#include "cli/commands/Commands.h"
#include "cli/commands/DocumentFile.h"
#include "common/files/TextFile.h"
#include "documents/ApplyIncrement.h"
#include "documents/Difference.h"
#include "host/data/DataFolder.h"

namespace Norvik::Cli {

using namespace Host;

namespace {

using Common::WriteTextFile;
namespace fs = boost::filesystem;
using Documents::NamedText;
using Combine = std::string (*)(const NamedText&, const NamedText&);

/// Combines the two documents of the command line and writes the result.
int WriteCombined(const CommandLine& line, std::ostream& output, Combine combine) {
  if (!line.outputFile.empty()) CheckOutput("--output", line.outputFile);
  UseUtf8Characters();
  // The library's log would mix with the answer.
  const LoggerScope silence(std::make_shared<ListeningLogger>(nullptr, LogListener()));
  const auto read = [&](const fs::path& file) {
    return NamedText{file.string(), ReadDocument(file, line)};
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
  return WriteCombined(line, output, Documents::ApplyIncrement);
}

int RunDiff(const CommandLine& line, std::ostream& output, std::ostream& /*errors*/) {
  return WriteCombined(line, output, Documents::DifferenceOf);
}

}  // namespace Norvik::Cli
