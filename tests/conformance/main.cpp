// norvik-host-conformance: reports which promises of docs/embedding.md a host keeps.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <boost/dll/runtime_symbol_info.hpp>
#include <boost/dll/shared_library.hpp>
#include <boost/filesystem/operations.hpp>
#include <cstdlib>
#include <iostream>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include "cli/commands/NearestName.h"
#include "common/LibraryVersion.h"
#include "conformance/Report.h"

namespace Norvik::Conformance {

namespace fs = boost::filesystem;

const std::vector<Promise>& AllPromises() {
  static const std::vector<Promise> all = [] {
    std::vector<Promise> joined;
    for (const auto& part : {ProcessPromises(), LifetimePromises(), ActionPromises(),
                             SchedulePromises(), ServicePromises()}) {
      joined.insert(joined.end(), part.begin(), part.end());
    }
    return joined;
  }();
  return all;
}

namespace {

enum ExitCode : int { ALL_KEPT = 0, SOME_BROKEN = 1, WRONG_USE = 2 };

struct Arguments {
  std::string adapter, module, keep, here;
  std::vector<std::string> only;
  bool asJson = false;
  bool list = false;
  long limit = 120;
  long patience = 30;
  unsigned int jobs = 4;
};

void AddOptions(CLI::App& program, Arguments& arguments) {
  program.add_option("adapter", arguments.adapter, "The library that has the adapter of the host")
      ->type_name("ADAPTER");
  program.add_option("--only", arguments.only, "Check only this promise; may be repeated")
      ->type_name("ID")
      ->allow_extra_args(false);
  program.add_flag("--list", arguments.list, "Print the promises and check nothing");
  program.add_flag("--json", arguments.asJson, "Print JSON");
  program.add_option("--module", arguments.module, "The module; default: the one of this program")
      ->type_name("FILE");
  program
      .add_option("--keep", arguments.keep,
                  "Leave the data folders of the checks in this folder, which must be empty")
      ->type_name("FOLDER");
  program.add_option("--limit", arguments.limit, "Seconds that a check may take")
      ->type_name("SECONDS")
      ->check(CLI::Range(1, 3600))
      ->capture_default_str();
  program
      .add_option("--patience", arguments.patience,
                  "Seconds that a check waits for what must happen")
      ->type_name("SECONDS")
      ->check(CLI::Range(5, 600))
      ->capture_default_str();
  program.add_option("--jobs", arguments.jobs, "Checks at a time")
      ->type_name("NUMBER")
      ->check(CLI::Range(1, 64))
      ->capture_default_str();
  program.add_option("--here", arguments.here)->group("");  // a process of this program itself
}

/// The promises of these identifiers, in the order of the table; all without any.
std::vector<Promise> Chosen(const std::vector<std::string>& identifiers) {
  std::vector<std::string> known;
  for (const Promise& promise : AllPromises()) known.emplace_back(promise.id);
  for (const std::string& wanted : identifiers) {
    if (std::find(known.begin(), known.end(), wanted) == known.end()) {
      throw Unusable(Cli::UnknownName("promise", wanted, known));
    }
  }
  std::vector<Promise> chosen;
  std::copy_if(AllPromises().begin(), AllPromises().end(), std::back_inserter(chosen),
               [&](const Promise& promise) {
                 return identifiers.empty() || std::count(identifiers.begin(), identifiers.end(),
                                                          std::string(promise.id)) != 0;
               });
  return chosen;
}

SubjectOptions FilesOf(const Arguments& arguments) {
  const auto library = [](const char* name) {
    const fs::path root = boost::dll::program_location().parent_path().parent_path();
    return root / "lib" / (name + boost::dll::shared_library::suffix().string());
  };
  SubjectOptions files;
  files.adapter = fs::absolute(arguments.adapter);
  files.probe = library("libNorvikConformanceProbe");
  files.module = arguments.module.empty() ? library("libNorvikKOB") : fs::path(arguments.module);
  files.module = fs::absolute(files.module);
  files.patience = std::chrono::seconds(arguments.patience);
  for (const fs::path& file : {files.adapter, files.probe, files.module}) {
    if (!fs::is_regular_file(file)) throw Unusable("there is no file " + file.string());
  }
  return files;
}

/// The folder with those of the checks; removed at the end unless the user has named it.
class Folder {
 public:
  explicit Folder(const std::string& named)
      : isNamed_(!named.empty()),
        path_(isNamed_ ? fs::absolute(named)
                       : fs::temp_directory_path() / fs::unique_path("conformance-%%%%%%%%")) {
    boost::system::error_code error;
    fs::create_directories(path_, error);
    if (!fs::is_directory(path_) || !fs::is_empty(path_)) {
      throw Unusable("the folder " + path_.string() + " cannot be made, or is not empty");
    }
    // Without links: a host compares the paths that it is given with those that it finds.
    path_ = fs::canonical(path_);
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  ~Folder() {
    boost::system::error_code error;
    if (!isNamed_) fs::remove_all(path_, error);
  }
  const fs::path& Path() const { return path_; }

 private:
  const bool isNamed_;
  fs::path path_;
};

int List(const Arguments& arguments) {
  auto list = nlohmann::ordered_json::array();
  for (const Promise& promise : Chosen(arguments.only)) {
    list.push_back({{"id", promise.id}, {"sentence", promise.sentence}});
    if (!arguments.asJson) WriteText(std::cout, promise, {"", ""});
  }
  if (arguments.asJson) std::cout << list.dump(2) << "\n";
  return ALL_KEPT;
}

int Check(const Arguments& arguments) {
  const auto promises = Chosen(arguments.only);
  RunOptions options;
  options.files = FilesOf(arguments);
  const Folder folder(arguments.keep);
  options.files.dataFolder = folder.Path();
  options.limit = std::chrono::seconds(arguments.limit);
  options.jobs = arguments.jobs;
  std::map<std::string, int> counts;
  auto rows = nlohmann::ordered_json::array();
  CheckApart(options, promises, [&](const Promise& promise, const Outcome& outcome) {
    if (outcome.result == UNUSABLE) throw Unusable(outcome.reason);
    ++counts[outcome.result];
    rows.push_back(ToJson(promise, outcome));
    if (!arguments.asJson) WriteText(std::cout, promise, outcome);
  });
  if (arguments.asJson) {
    const nlohmann::ordered_json report = {{"adapter", options.files.adapter.string()},
                                           {"kept", counts[KEPT]},
                                           {"broken", counts[BROKEN]},
                                           {"notOffered", counts[NOT_OFFERED]},
                                           {"promises", rows}};
    std::cout << report.dump(2) << "\n";
  } else {
    std::cout << counts[KEPT] << " kept, " << counts[BROKEN] << " broken, " << counts[NOT_OFFERED]
              << " not offered\n";
  }
  return counts[BROKEN] == 0 ? ALL_KEPT : SOME_BROKEN;
}

int Run(const Arguments& arguments) {
  if (arguments.list) return List(arguments);
  if (arguments.adapter.empty()) throw Unusable("no ADAPTER is named; --help shows the usage");
  if (arguments.here.empty()) return Check(arguments);
  SubjectOptions files = FilesOf(arguments);
  files.dataFolder = arguments.keep;
  const int status = CheckHere(files, Chosen({arguments.here}).front());
  // Nothing of the host runs any more after its end: its adapter is not asked again.
  std::_Exit(status);
}

int Main(int count, char** words) {
  CLI::App program("Reports which promises of docs/embedding.md a host of the module keeps",
                   "norvik-host-conformance");
  program.footer(
      "Exit code: 0 all are kept, 1 some are broken, 2 wrong use or an adapter that "
      "cannot be loaded");
  Arguments arguments;
  AddOptions(program, arguments);
  try {
    Common::RequireLibraryVersion("norvik-host-conformance");
    program.parse(count, words);
    return Run(arguments);
  } catch (const CLI::CallForHelp&) {
    std::cout << program.help();
    return ALL_KEPT;
  } catch (const std::exception& error) {
    std::cerr << "norvik-host-conformance: " << error.what() << "\n";
    return WRONG_USE;
  }
}

}  // namespace

}  // namespace Norvik::Conformance

int main(int count, char** words) { return Norvik::Conformance::Main(count, words); }
