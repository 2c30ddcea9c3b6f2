#include "forge/agents/SimulatedAgent.h"

#include <sodium.h>

#include <algorithm>
#include <ctime>
#include <utility>
#include <vector>

#include "forge/Mac.h"

namespace Norvik::Forge {

namespace {

constexpr double FIRST_WAIT = 10;
constexpr double LONGEST_WAIT = 3600;
constexpr double LONGEST_REQUESTED_WAIT = 86'400;

/// The name of a file as a header holds it.
std::string Escaped(const std::string& name) {
  static constexpr char DIGITS[] = "0123456789ABCDEF";
  std::string text;
  for (const char letter : name) {
    const auto byte = static_cast<unsigned char>(letter);
    const bool plain = (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
                       (byte >= '0' && byte <= '9') || byte == '-' || byte == '.' || byte == '_';
    if (plain) {
      text += letter;
    } else {
      text += {'%', DIGITS[byte >> 4], DIGITS[byte & 15]};
    }
  }
  return text;
}

/// States and answers of two runs must not have the same identifiers.
std::uint64_t NewSeed() {
  std::uint64_t seed = 0;
  randombytes_buf(&seed, sizeof(seed));
  return seed;
}

std::string TextIn(const Json& object, const char* key) {
  const auto found = object.find(key);
  return found != object.end() && found->is_string() ? found->get<std::string>() : "";
}

}  // namespace

struct SimulatedAgent::Session {
  Session(AgentSurroundings& surroundings, unsigned int number, Waiting contact)
      : mac(surroundings.profiles, surroundings.options.fleet.seed, number,
            surroundings.options.fleet.start),
        day(contact.day),
        done(std::move(contact.done)),
        timer(surroundings.context),
        random(NewSeed()) {}

  std::string NewId() {
    char text[37];
    std::snprintf(text, sizeof(text), "%08x-%04x-4%03x-8%03x-%012llx",
                  static_cast<unsigned int>(random.Bits() >> 32),
                  static_cast<unsigned int>(random.Bits() >> 48),
                  static_cast<unsigned int>(random.Bits() >> 52),
                  static_cast<unsigned int>(random.Bits() >> 52),
                  static_cast<unsigned long long>(random.Bits() >> 16));
    return text;
  }

  Mac mac;
  int day;
  std::function<void()> done;
  std::deque<Step> steps;
  std::vector<MadeDocument::Kind> wanted;  ///< by tasks
  boost::asio::steady_timer timer;
  double wait = FIRST_WAIT;
  Random random;
};

SimulatedAgent::SimulatedAgent(AgentSurroundings& surroundings, unsigned int number)
    : surroundings_(surroundings), number_(number) {}

SimulatedAgent::~SimulatedAgent() = default;

void SimulatedAgent::Contact(int day, std::function<void()> done) {
  waiting_.push_back({day, std::move(done)});
  if (!session_) Begin();
}

void SimulatedAgent::Begin() {
  session_ = std::make_unique<Session>(surroundings_, number_, std::move(waiting_.front()));
  waiting_.pop_front();
  if (!line_) line_ = std::make_unique<HttpLine>(surroundings_.context, surroundings_.library);
  if (!enrolled_) session_->steps.push_back(Enrolment());
  session_->steps.push_back(Tasks());
  Next();
}

void SimulatedAgent::Next() {
  if (session_->steps.empty()) {
    End();
  } else {
    Send();
  }
}

void SimulatedAgent::Send() {
  line_->Send(session_->steps.front().make(), [this](const HttpAnswer& answer) { Take(answer); });
}

void SimulatedAgent::Take(const HttpAnswer& answer) {
  Measures& measures = surroundings_.measures;
  HttpAnswer judged = answer;
  const bool isEnrolment = session_->steps.front().kind == "enrol";
  if (isEnrolment && answer.status == 202) {
    judged.status = 0;
    judged.error = "not yet (status 202)";
  } else if (answer.status >= 200 && answer.status < 300) {
    const Json body = Json::parse(answer.body, nullptr, /*allow_exceptions=*/false);
    Step step = std::move(session_->steps.front());
    session_->steps.pop_front();
    if (body.is_object() && step.take(body)) {
      measures.Add(step.kind, answer);
      if (step.documentBytes > 0) ++measures.documents;
      measures.documentBytes += step.documentBytes;
      session_->wait = FIRST_WAIT;
      Next();
      return;
    }
    session_->steps.push_front(std::move(step));
    judged.status = 0;
    judged.error = "an answer that is not as described";
  }
  measures.Add(session_->steps.front().kind, judged);
  if (answer.status == 401 && !isEnrolment) {
    enrolled_ = false;
    session_->steps.push_front(Enrolment());
    Send();
  } else if (isEnrolment || IsServerFailure(judged)) {
    Wait(judged);
  } else {
    session_->steps.pop_front();
    Next();
  }
}

void SimulatedAgent::Wait(const HttpAnswer& answer) {
  Random& random = session_->random;
  double seconds = session_->wait * random.Between(0.5, 1);
  if (answer.retryAfter >= 0) {
    seconds =
        std::clamp(static_cast<double>(answer.retryAfter), FIRST_WAIT, LONGEST_REQUESTED_WAIT) *
        random.Between(1, 1.1);
  }
  session_->wait = std::min(session_->wait * 2, LONGEST_WAIT);
  session_->timer.expires_after(std::chrono::milliseconds(static_cast<long>(seconds * 1000)));
  session_->timer.async_wait([this](const boost::system::error_code& error) {
    if (!error) Send();
  });
}

void SimulatedAgent::End() {
  const auto done = std::move(session_->done);
  session_.reset();
  ++surroundings_.measures.completed;
  if (!waiting_.empty()) {
    Begin();
  } else if (surroundings_.options.keepOpen <= 0) {
    line_.reset();
  }
  done();
}

HttpRequest SimulatedAgent::RequestOf(const char* method, const std::string& resource,
                                      const Json& body) const {
  const Mac& mac = session_->mac;
  return {method,
          surroundings_.options.server + "/norvik/v1/agents/" + mac.Guid() + resource,
          {"Authorization: Bearer " + (token_.empty() ? mac.Token() : token_),
           "Accept: application/json", "Content-Type: application/json",
           "Expect:", "User-Agent: norvik-agent/9.24.2.0"},
          body.dump()};
}

SimulatedAgent::Step SimulatedAgent::Enrolment() {
  const auto make = [this] {
    const Mac& mac = session_->mac;
    Json body = {{"agentVersion", "9.24.2.0"},
                 {"hostName", mac.HostName()},
                 {"model", mac.Model()},
                 {"platformUuid", mac.PlatformUuid()},
                 {"serialNumber", mac.SerialNumber()}};
    const std::string& secret = surroundings_.options.secret;
    if (!secret.empty()) body["secret"] = secret;
    return RequestOf("PUT", "", body);
  };
  return {"enrol", make, [this](const Json& answer) {
            if (TextIn(answer, "identifier") != session_->mac.Guid()) return false;
            enrolled_ = true;
            if (const std::string token = TextIn(answer, "token"); !token.empty()) token_ = token;
            return true;
          }};
}

SimulatedAgent::Step SimulatedAgent::Tasks() {
  const auto make = [this] {
    return RequestOf("POST", "/tasks", {{"agentIdentifier", session_->mac.Guid()}, {"product", 1}});
  };
  return {"tasks", make, [this](const Json& answer) {
            const auto tasks = answer.find("tasks");
            if (tasks == answer.end() || !tasks->is_array()) return false;
            for (const Json& task : *tasks) AddTask(task);
            AddDocuments();
            return true;
          }};
}

/// Answers a task as an agent does that has run it at once.
void SimulatedAgent::AddTask(const Json& task) {
  if (!task.is_object() || TextIn(task, "identifier").empty()) return;
  if (!knownTasks_.insert(TextIn(task, "identifier")).second) return;
  ++surroundings_.measures.tasks;
  const std::string code = task.contains("code") ? task["code"].dump() : "";
  const auto known = surroundings_.tasks.find(code);
  if (known == surroundings_.tasks.end()) {
    AddStates(task, {3}, "no such action");
    return;
  }
  AddStates(task, known->value("states", Json::array()), "");
  if (known->contains("titles") || known->contains("text")) AddAnswer(task, *known);
  const std::string document = known->value("document", "");
  if (document.empty()) return;
  session_->wanted.push_back(document == "files" ? MadeDocument::FileInventory
                                                 : MadeDocument::Inventory);
}

/// Those of the day, then those that tasks want: files go after states and answers.
void SimulatedAgent::AddDocuments() {
  Session& session = *session_;
  std::vector<Upload> uploads = surroundings_.uploads.For(session.mac, session.day);
  for (const MadeDocument::Kind kind : session.wanted) {
    for (Upload& upload : surroundings_.uploads.Full(session.mac, session.day, kind)) {
      uploads.push_back(std::move(upload));
    }
  }
  for (Upload& upload : uploads) AddUpload(std::move(upload));
}

void SimulatedAgent::AddStates(const Json& task, const Json& states, const std::string& reason) {
  if (states.empty() || (TextIn(task, "requestId").empty() && TextIn(task, "name").empty())) return;
  Json list = Json::array();
  for (const Json& state : states) {
    list.push_back({{"id", session_->NewId()},
                    {"message", reason},
                    {"requestId", TextIn(task, "requestId")},
                    {"status", state},
                    {"taskCreationDate", TextIn(task, "creationDate")},
                    {"taskName", TextIn(task, "name")},
                    {"taskTimeStamp", TextIn(task, "timeStamp")},
                    {"time", std::time(nullptr)}});
  }
  const std::string last = list.back()["id"];
  const Json body = {{"statuses", std::move(list)}};
  session_->steps.push_back(
      {"statuses", [this, body] { return RequestOf("POST", "/statuses", body); },
       [last](const Json& answer) { return TextIn(answer, "acknowledged") == last; }});
}

void SimulatedAgent::AddAnswer(const Json& task, const Json& known) {
  const std::string id = session_->NewId();
  const Json text = known.value("text", Json());
  const Json body = {{"code", task["code"]},
                     {"id", id},
                     {"requestId", TextIn(task, "requestId")},
                     {"result", 0},
                     {"rows", known.value("rows", Json::array())},
                     {"success", text.is_null()},
                     {"taskIdentifier", TextIn(task, "identifier")},
                     {"text", text},
                     {"time", std::time(nullptr)},
                     {"titles", known.value("titles", Json::array())},
                     {"truncated", false}};
  session_->steps.push_back(
      {"answers", [this, body] { return RequestOf("POST", "/answers", body); },
       [id](const Json& answer) { return TextIn(answer, "acknowledged") == id; }});
}

void SimulatedAgent::AddUpload(Upload upload) {
  const auto shared = std::make_shared<const Upload>(std::move(upload));
  const auto make = [this, shared] {
    HttpRequest request = RequestOf("PUT", "/files/" + shared->sha256, nullptr);
    request.headers[2] = "Content-Type: application/octet-stream";
    request.headers[3] = "Expect: 100-continue";
    request.headers.push_back("Norvik-File-Name: " + Escaped(shared->name));
    request.body = shared->bytes;
    return request;
  };
  session_->steps.push_back({"files", make,
                             [shared](const Json& answer) {
                               return TextIn(answer, "sha256") == shared->sha256 &&
                                      answer.value("size", Json()) == shared->bytes.size();
                             },
                             shared->bytes.size()});
}

}  // namespace Norvik::Forge
