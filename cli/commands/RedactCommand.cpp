#include <sodium.h>

#include <boost/filesystem/operations.hpp>
#include <map>
#include <ostream>
#include <set>

#include "cli/commands/Commands.h"
#include "cli/commands/DocumentFile.h"
#include "cli/commands/RedactedDocuments.h"
#include "cli/commands/Rendering.h"
#include "common/files/TextFile.h"
#include "host/HostError.h"
#include "host/redaction/StandIns.h"

namespace Norvik::Cli {

using namespace Host;

namespace {

namespace fs = boost::filesystem;

constexpr std::size_t LEAST_SECRET = 16;

std::string MakeSecretIn(const fs::path& file) {
  CheckOutput("--secret-file", file);
  const std::string secret = StandIns::NewSecret();
  std::string digits(secret.size() * 2 + 1, '\0');
  ::sodium_bin2hex(digits.data(), digits.size(),
                   reinterpret_cast<const unsigned char*>(secret.data()), secret.size());
  digits.back() = '\n';
  Common::WriteTextFile(file, digits);
  return digits;
}

std::string ReadSecretIn(const fs::path& file) {
  std::string secret = Common::ReadTextFile(file);
  if (secret.size() < LEAST_SECRET) {
    throw UsageError(file.string() + " is no secret: it has less than " +
                     std::to_string(LEAST_SECRET) + " bytes");
  }
  return secret;
}

/// The secret in a file, which is created if it is missing; a new one without a file.
std::string SecretIn(const fs::path& file) {
  if (file.empty()) return StandIns::NewSecret();
  return fs::exists(file) ? ReadSecretIn(file) : MakeSecretIn(file);
}

/// Where each document goes; empty for standard output.
class Targets {
 public:
  explicit Targets(const CommandLine& line)
      : output_(line.outputFile),
        isFolder_(!output_.empty() && (line.files.size() > 1 || fs::is_directory(output_))) {
    if (isFolder_ && fs::exists(output_) && !fs::is_directory(output_)) {
      throw UsageError("--output wants a folder for several documents, not " + output_.string());
    }
    if (!isFolder_ && !output_.empty()) CheckOutput("--output", output_);
  }

  /// Throws `UsageError` if it cannot be written, or if another document has it.
  fs::path For(const fs::path& file, const RedactedDocuments& documents) {
    if (!isFolder_) return output_;
    fs::path target = output_ / (documents.Redacted(file.stem().string()) + ".json");
    CheckOutput("--output", target);
    if (!used_.insert(target.string()).second) {
      throw UsageError("two of the documents would be " + target.string());
    }
    return target;
  }

  void MakeFolder() const {
    if (!isFolder_ || fs::exists(output_)) return;
    fs::create_directory(output_);
    fs::permissions(output_, fs::owner_all);
  }

 private:
  const fs::path output_;
  const bool isFolder_;
  std::set<std::string> used_;
};

struct Redacted {
  fs::path file;
  fs::path target;
  std::string text;
};

void Write(const std::vector<Redacted>& documents, bool json, std::ostream& output) {
  OrderedJson list = OrderedJson::array();
  for (const Redacted& document : documents) {
    if (document.target.empty()) {
      output << document.text << "\n";
      continue;
    }
    Common::WriteTextFile(document.target, document.text);
    list.push_back({{"file", document.file.string()},
                    {"output", document.target.string()},
                    {"bytes", document.text.size()}});
  }
  if (json && !list.empty()) output << JsonLine({{"documents", list}});
}

}  // namespace

int RunRedact(const CommandLine& line, std::ostream& output, std::ostream& /*errors*/) {
  Targets targets(line);
  if (!line.mapFile.empty()) CheckOutput("--map", line.mapFile);
  // The library's log would mix with the answer.
  const LoggerScope silence(std::make_shared<ListeningLogger>(nullptr, LogListener()));
  std::vector<Documents::NamedText> texts;
  for (const auto& file : line.files) texts.push_back({file.string(), ReadDocument(file, line)});
  StandIns standIns(SecretIn(line.secretFile));
  std::map<std::string, std::string> values;
  if (!line.mapFile.empty()) {
    standIns.SetListener(
        [&](const std::string& value, const std::string& standIn) { values[standIn] = value; });
  }
  RedactedDocuments documents(std::move(texts), standIns);
  std::vector<Redacted> redacted;
  for (const auto& file : line.files) {
    redacted.push_back({file, targets.For(file, documents), documents.Next()});
  }
  targets.MakeFolder();
  Write(redacted, line.json, output);
  if (!line.mapFile.empty()) Common::WriteTextFile(line.mapFile, JsonLine(values));
  return EXIT_DONE;
}

}  // namespace Norvik::Cli
