#include "forge/agents/AgentsCommand.h"

#include <sys/resource.h>

#include <algorithm>
#include <boost/asio/steady_timer.hpp>
#include <boost/filesystem/operations.hpp>
#include <chrono>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "common/files/TextFile.h"
#include "forge/Tables.h"
#include "forge/agents/SimulatedAgent.h"

namespace Norvik::Forge {

namespace {

using Clock = std::chrono::steady_clock;

std::chrono::nanoseconds Seconds(double seconds) {
  return std::chrono::nanoseconds(static_cast<long long>(seconds * 1e9));
}

/// Each agent has up to four descriptors.
void AllowManyDescriptors(unsigned int agents) {
  rlimit limit{};
  getrlimit(RLIMIT_NOFILE, &limit);
  const rlim_t wanted = static_cast<rlim_t>(agents) * 4 + 64;
  if (limit.rlim_cur >= wanted) return;
  limit.rlim_cur = std::min(limit.rlim_max, wanted);
  setrlimit(RLIMIT_NOFILE, &limit);
}

/// The file of `--state`: which agents are enrolled, and their tokens.
class EnrolmentFile {
 public:
  EnrolmentFile(std::string file, std::uint64_t seed)
      : file_(std::move(file)), content_{{"seed", seed}, {"tokens", Json::object()}} {
    if (file_.empty() || !boost::filesystem::exists(file_)) return;
    const Json stored = Json::parse(Common::ReadTextFile(file_, LARGEST), nullptr, false);
    const bool isKnown = stored.is_object() && stored.contains("seed") &&
                         stored.contains("tokens") && stored["tokens"].is_object();
    if (!isKnown) throw std::runtime_error(file_ + " is no file of --state");
    if (stored["seed"] != seed) throw std::runtime_error(file_ + " is of another seed");
    content_ = stored;
  }

  void Give(SimulatedAgent& agent) const {
    const auto found = content_["tokens"].find(std::to_string(agent.Number()));
    if (found != content_["tokens"].end()) agent.SetEnrolled(*found);
  }
  void Take(const SimulatedAgent& agent) {
    if (agent.IsEnrolled()) content_["tokens"][std::to_string(agent.Number())] = agent.Token();
  }
  void Save() const {
    if (!file_.empty()) Common::WriteTextFile(file_, content_.dump());
  }

 private:
  static constexpr std::size_t LARGEST = 1U << 30;
  std::string file_;
  Json content_;
};

/// Has each agent make its contacts: those of a day after those of the day before, at a steady
/// rate, whether or not the server keeps up.
class Load {
 public:
  Load(AgentSurroundings& surroundings, EnrolmentFile& enrolments)
      : enrolments_(enrolments),
        surroundings_(surroundings),
        timer_(surroundings.context),
        limit_(surroundings.context) {
    const FleetOptions& fleet = surroundings.options.fleet;
    for (unsigned int i = 0; i < fleet.macs; ++i) {
      agents_.push_back(std::make_unique<SimulatedAgent>(surroundings, fleet.first + i));
      enrolments.Give(*agents_.back());
    }
    surroundings.measures.contacts =
        static_cast<std::size_t>(fleet.macs) * static_cast<std::size_t>(fleet.days);
  }

  void Run() {
    begin_ = Clock::now();
    BeginContacts();
    surroundings_.context.run();
    surroundings_.measures.seconds = std::chrono::duration<double>(end_ - begin_).count();
    for (const auto& agent : agents_) enrolments_.Take(*agent);
  }

 private:
  void BeginContacts() {
    const double rate = surroundings_.options.rate;
    const std::size_t contacts = surroundings_.measures.contacts;
    for (; begun_ < contacts; ++begun_) {
      const auto due = begin_ + Seconds(static_cast<double>(begun_) / rate);
      if (due > Clock::now()) {
        timer_.expires_at(due);
        timer_.async_wait([this](const boost::system::error_code& error) {
          if (!error) BeginContacts();
        });
        return;
      }
      const int day = static_cast<int>(begun_ / agents_.size());
      agents_[begun_ % agents_.size()]->Contact(day, [this] { Count(); });
    }
    limit_.expires_after(Seconds(surroundings_.options.giveUp));
    limit_.async_wait([this](const boost::system::error_code& error) {
      if (!error) Stop();
    });
  }

  void Count() {
    if (surroundings_.measures.completed < surroundings_.measures.contacts) return;
    end_ = Clock::now();
    limit_.cancel();
    if (surroundings_.options.keepOpen == 0) return;
    timer_.expires_after(Seconds(surroundings_.options.keepOpen));
    timer_.async_wait([this](const boost::system::error_code& /*error*/) { Stop(); });
  }

  void Stop() {
    if (surroundings_.measures.completed < surroundings_.measures.contacts) end_ = Clock::now();
    surroundings_.context.stop();
  }

  EnrolmentFile& enrolments_;
  AgentSurroundings& surroundings_;
  boost::asio::steady_timer timer_;
  boost::asio::steady_timer limit_;
  std::vector<std::unique_ptr<SimulatedAgent>> agents_;
  std::size_t begun_ = 0;
  Clock::time_point begin_;
  Clock::time_point end_;
};

}  // namespace

bool RunAgents(const AgentsOptions& options, std::ostream& output) {
  AllowManyDescriptors(options.fleet.macs);
  const Profiles profiles;
  const Json tasks = Json::parse(TasksJson());
  EnrolmentFile enrolments(options.state, options.fleet.seed);
  const HttpLibrary library(options.caFile);
  UploadSource uploads(options, profiles);
  if (options.prepare) uploads.Prepare();
  Measures measures;
  AgentSurroundings surroundings{{}, options, profiles, library, uploads, tasks, measures};
  Load(surroundings, enrolments).Run();
  enrolments.Save();
  output << (options.json ? measures.AsJson().dump() + "\n" : measures.AsText());
  return measures.IsWhole();
}

}  // namespace Norvik::Forge
