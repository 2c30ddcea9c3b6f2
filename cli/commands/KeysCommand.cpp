#include <boost/algorithm/string/join.hpp>
#include <boost/filesystem/operations.hpp>
#include <ostream>
#include <stdexcept>

#include "cli/commands/Commands.h"
#include "cli/commands/DocumentFile.h"
#include "cli/commands/NearestName.h"
#include "cli/commands/Rendering.h"
#include "common/files/FileSealer.h"
#include "host/HostError.h"
#include "host/data/DataFolder.h"
#include "host/keys/KeyListing.h"
#include "host/keys/ServerKeys.h"
#include "platform/FileSystem.h"

namespace Norvik::Cli {

using namespace Host;

namespace {

using Common::FingerprintOf;
namespace fs = boost::filesystem;

/// "7f49 2b4e ...", for comparing by eye.
std::string Grouped(const std::string& fingerprint) {
  std::string text;
  for (std::size_t i = 0; i < fingerprint.size(); i += 4) {
    text += (i == 0 ? "" : " ") + fingerprint.substr(i, 4);
  }
  return text;
}

fs::path OneFolder(const CommandLine& line) {
  if (line.files.size() != 1) throw UsageError("keys " + line.what + " wants one folder");
  return line.files.front();
}

int Make(const CommandLine& line, std::ostream& output) {
  const fs::path folder = OneFolder(line);
  const std::string key = FingerprintOf(MakeServerKeys(folder));
  const fs::path publicKey = folder / "server.pub";
  if (line.json) {
    output << JsonLine({{"key", key},
                        {"publicKey", publicKey.string()},
                        {"privateKey", (folder / "server.key").string()}});
  } else {
    output << "key " << Grouped(key) << "\n"
           << CellText(publicKey.string()) << " is for the agents, as keys/server.pub\n";
  }
  return EXIT_DONE;
}

int Rotate(const CommandLine& line, std::ostream& output) {
  const fs::path folder = OneFolder(line);
  const KeyRotation rotation = RotateServerKeys(folder);
  const std::string made = FingerprintOf(rotation.made);
  const std::string former = FingerprintOf(rotation.former);
  if (line.json) {
    output << JsonLine({{"key", made},
                        {"publicKey", (folder / "server.pub").string()},
                        {"privateKey", (folder / "server.key").string()},
                        {"formerKey", former},
                        {"formerPrivateKey", rotation.formerFile.string()}});
  } else {
    output << "key " << Grouped(made) << "\nformer key " << Grouped(former) << ", kept in "
           << CellText(rotation.formerFile.string()) << "\n";
  }
  return EXIT_DONE;
}

/// What `show` found; one row of its table, or one object, for each key and each sealed file.
class Shown {
 public:
  explicit Shown(const CommandLine& line) : line_(line) {}

  void Add(const fs::path& place) {
    if (fs::is_directory(place)) return AddFolder(place);
    if (IsKeyFile(place)) return AddKey(KeyIn(place));
    if (IsSealed(place)) return AddSealed(place);
    Platform::OpenRegularFile(place.string());
    throw UsageError(place.string() + " is no folder, no key file (*.pub, *.key), not sealed");
  }
  /// Adds the failure of one place to the problems.
  void Fail(const std::exception& error) { problems_.push_back(ReasonOf(error)); }

  int Print(std::ostream& output, std::ostream& errors) const {
    if (line_.json) {
      output << JsonLine({{"keys", keys_}, {"files", files_}});
    } else if (rows_.size() > 1) {
      output << TableText(rows_);
    } else if (problems_.empty()) {
      output << "no keys\n";
    }
    for (const auto& problem : problems_) errors << MessageLine(line_.json, problem) << std::flush;
    return problems_.empty() ? EXIT_DONE : EXIT_FAILED;
  }

 private:
  void AddFolder(const fs::path& folder) {
    const KeyListing listing = KeysIn(folder);
    for (const ListedKey& key : listing.keys) AddKey(key);
    problems_.insert(problems_.end(), listing.problems.begin(), listing.problems.end());
  }

  void AddKey(const ListedKey& key) {
    const std::string kind = key.isPrivate ? "private" : "public";
    keys_.push_back({{"file", key.file.string()},
                     {"kind", kind},
                     {"key", key.fingerprint},
                     {"fits", key.fits ? OrderedJson(*key.fits) : OrderedJson()},
                     {"warnings", key.warnings}});
    std::vector<std::string> notes = key.warnings;
    if (key.fits) {
      const std::string other = key.file.stem().string() + (key.isPrivate ? ".pub" : ".key");
      notes.insert(notes.begin(), (*key.fits ? "fits " : "does not fit ") + other);
    }
    AddRow(key.file, kind, key.fingerprint, boost::join(notes, "; "));
  }

  void AddSealed(const fs::path& given) {
    const fs::path file = fs::is_symlink(given) ? fs::canonical(given) : given;
    const Common::SealedStart start = Common::SealedStartOf(file);
    const Common::OpeningKeys keys(KeyPlaces(file, line_));
    std::string key, with;
    if (start.NamesKey()) key = FingerprintOf(start.key);
    try {
      const Common::OpeningKey& used = Common::KeyOfSealedFile(file, keys);
      key = FingerprintOf(used.identifier);
      with = used.file.string();
    } catch (const Common::WrongKeyError&) {
      // That is an answer, too.
    }
    files_.push_back({{"file", given.string()},
                      {"version", start.version},
                      {"key", key.empty() ? OrderedJson() : OrderedJson(key)},
                      {"opensWith", with.empty() ? OrderedJson() : OrderedJson(with)}});
    AddRow(given, "sealed, version " + std::to_string(start.version), key,
           with.empty() ? "no key at hand opens it" : "opens with " + with);
  }

  void AddRow(const fs::path& file, const std::string& kind, const std::string& fingerprint,
              const std::string& note) {
    rows_.push_back({file.string(), kind, Grouped(fingerprint), note});
  }

  const CommandLine& line_;
  OrderedJson keys_ = OrderedJson::array();
  OrderedJson files_ = OrderedJson::array();
  std::vector<std::vector<OrderedJson>> rows_ = {{"file", "kind", "key", ""}};
  std::vector<std::string> problems_;
};

int Show(const CommandLine& line, std::ostream& output, std::ostream& errors) {
  std::vector<fs::path> places = line.files;
  if (places.empty()) places.push_back(line.agent.dataFolder / KEY_FOLDER);
  Shown shown(line);
  for (const fs::path& place : places) {
    try {
      shown.Add(place);
    } catch (const UsageError&) {
      throw;
    } catch (const std::exception& error) {
      shown.Fail(error);
    }
  }
  return shown.Print(output, errors);
}

}  // namespace

int RunKeys(const CommandLine& line, std::ostream& output, std::ostream& errors) {
  if (line.what == "make") return Make(line, output);
  if (line.what == "rotate") return Rotate(line, output);
  if (line.what == "show") return Show(line, output, errors);
  throw UsageError(UnknownName("word after keys", line.what, {"make", "show", "rotate"}));
}

}  // namespace Norvik::Cli
