#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>
#include <deque>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <utility>

#include "forge/agents/HttpLine.h"
#include "forge/agents/Measures.h"
#include "forge/agents/UploadSource.h"

namespace Norvik::Forge {

/// What all simulated agents of a process use.
struct AgentSurroundings {
  boost::asio::io_context context;
  const AgentsOptions& options;
  const Profiles& profiles;
  const HttpLibrary& library;
  UploadSource& uploads;
  const Json& tasks;  ///< of tasks.json
  Measures& measures;
};

/// An agent that speaks the protocol of docs/server-protocol.md for a Mac that does not exist. In a
/// contact it enrols unless it is enrolled, fetches its tasks, answers them, and sends the files of
/// a day; then it closes its connection. Between contacts it takes little memory.
class SimulatedAgent {
 public:
  SimulatedAgent(AgentSurroundings& surroundings, unsigned int number);
  SimulatedAgent(const SimulatedAgent&) = delete;
  SimulatedAgent& operator=(const SimulatedAgent&) = delete;
  ~SimulatedAgent();

  /// What an agent keeps of its enrolment: the token of the server, or an empty one for its own.
  void SetEnrolled(std::string token) {
    enrolled_ = true;
    token_ = std::move(token);
  }
  bool IsEnrolled() const { return enrolled_; }
  const std::string& Token() const { return token_; }
  unsigned int Number() const { return number_; }

  /// Makes the contact of a day, after those that were asked for before.
  /// @param done  called once the contact is at its end
  void Contact(int day, std::function<void()> done);

 private:
  /// The contact that is under way.
  struct Session;
  /// Something to send, and what to do with the answer to it.
  struct Step {
    std::string kind;
    std::function<HttpRequest()> make;
    std::function<bool(const Json&)> take;  ///< false: the answer is not as described
    std::size_t documentBytes = 0;
  };
  struct Waiting {
    int day;
    std::function<void()> done;
  };

  void Begin();
  void Next();
  void Send();
  void Take(const HttpAnswer& answer);
  void Wait(const HttpAnswer& answer);
  void End();

  HttpRequest RequestOf(const char* method, const std::string& resource, const Json& body) const;
  Step Enrolment();
  Step Tasks();
  void AddTask(const Json& task);
  void AddDocuments();
  void AddStates(const Json& task, const Json& states, const std::string& reason);
  void AddAnswer(const Json& task, const Json& known);
  void AddUpload(Upload upload);

  AgentSurroundings& surroundings_;
  unsigned int number_;
  bool enrolled_ = false;
  std::string token_;  ///< of the server; empty: the agent's own
  std::set<std::string> knownTasks_;
  std::deque<Waiting> waiting_;
  std::unique_ptr<Session> session_;
  std::unique_ptr<HttpLine> line_;
};

}  // namespace Norvik::Forge
