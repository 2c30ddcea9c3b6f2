#include "conformance/Report.h"

#include <atomic>
#include <boost/dll/runtime_symbol_info.hpp>
#include <boost/filesystem/operations.hpp>
#include <future>
#include <iomanip>
#include <thread>

#include "common/files/TextFile.h"
#include "common/text/Text.h"
#include "platform/ChildProcess.h"

namespace Norvik::Conformance {

namespace fs = boost::filesystem;

namespace {

constexpr char OUTCOME_FILE[] = "outcome.json";
constexpr int SIGNALLED = 128;

Outcome OutcomeOf(Subject& subject, const Promise& promise) {
  try {
    subject.Start();
    promise.check(subject);
    return {KEPT, ""};
  } catch (const NotOffered&) {
    return {NOT_OFFERED, ""};
  } catch (const Unusable& error) {
    return {UNUSABLE, error.what()};
  } catch (const Broken& error) {
    return {BROKEN, error.what()};
  } catch (const std::exception& error) {
    return {BROKEN, std::string("the host throws: ") + error.what()};
  } catch (...) {
    return {BROKEN, "the host throws what is no std::exception"};
  }
}

std::string HowItEnded(const Platform::ChildResult& child, const RunOptions& options) {
  if (!child.started) return "the process could not be started: " + child.problem;
  if (child.limit == Platform::ChildResult::Limit::TIME) {
    return "the check did not end within " + std::to_string(options.limit.count()) + " seconds";
  }
  if (child.exitCode > SIGNALLED) {
    return "the process was ended by the signal " + std::to_string(child.exitCode - SIGNALLED);
  }
  return "the process ended with the exit code " + std::to_string(child.exitCode);
}

Outcome CheckInChild(const RunOptions& options, const Promise& promise) {
  const fs::path folder = options.files.dataFolder / promise.id;
  fs::create_directory(folder);
  Platform::ChildCommand command;
  command.words = {boost::dll::program_location().string(),
                   options.files.adapter.string(),
                   "--here",
                   promise.id,
                   "--keep",
                   folder.string(),
                   "--module",
                   options.files.module.string(),
                   "--patience",
                   std::to_string(options.files.patience.count())};
  command.timeLimit = options.limit;
  const Platform::ChildResult child = Platform::RunChild(command);
  const fs::path file = folder / OUTCOME_FILE;
  // The outcome counts even if the host does not end afterwards: that is another promise.
  if (!fs::exists(file)) return {BROKEN, HowItEnded(child, options)};
  const auto outcome = nlohmann::json::parse(Common::ReadTextFile(file));
  return {outcome.at("result"), outcome.at("reason")};
}

std::string ValidText(const std::string& text) {
  return Common::EscapeControls(text);  // a host's text may hold any bytes
}

}  // namespace

int CheckHere(const SubjectOptions& files, const Promise& promise) {
  const auto write = [&](const Outcome& outcome) {
    const nlohmann::json json = {{"result", outcome.result}, {"reason", ValidText(outcome.reason)}};
    Common::WriteTextFile(files.dataFolder / OUTCOME_FILE, json.dump());
  };
  SubjectOptions own = files;
  own.dataFolder /= "data";
  try {
    Subject subject(own);
    write(OutcomeOf(subject, promise));
    subject.duringDelete = {};
    subject.Stop();
  } catch (const Unusable& error) {
    write({UNUSABLE, error.what()});
  }
  return 0;
}

void CheckApart(const RunOptions& options, const std::vector<Promise>& promises,
                const std::function<void(const Promise&, const Outcome&)>& done) {
  std::vector<std::promise<Outcome>> outcomes(promises.size());
  std::atomic<std::size_t> next{0};
  const auto work = [&] {
    for (std::size_t i = next++; i < promises.size(); i = next++) {
      try {
        outcomes[i].set_value(CheckInChild(options, promises[i]));
      } catch (...) {
        outcomes[i].set_exception(std::current_exception());
      }
    }
  };
  std::vector<std::future<void>> workers;
  for (unsigned int i = 0; i < options.jobs; ++i) {
    workers.push_back(std::async(std::launch::async, work));
  }
  for (std::size_t i = 0; i < promises.size(); ++i) {
    try {
      done(promises[i], outcomes[i].get_future().get());
    } catch (...) {
      next = promises.size();
      throw;
    }
  }
}

void WriteText(std::ostream& output, const Promise& promise, const Outcome& outcome) {
  output << std::left << std::setw(13) << outcome.result << std::setw(23) << promise.id
         << promise.sentence << "\n";
  if (!outcome.reason.empty()) output << std::string(13, ' ') << outcome.reason << "\n";
  output << std::flush;
}

nlohmann::ordered_json ToJson(const Promise& promise, const Outcome& outcome) {
  return {{"id", promise.id},
          {"sentence", promise.sentence},
          {"result", outcome.result},
          {"reason", outcome.reason}};
}

}  // namespace Norvik::Conformance
