#pragma once

#include <functional>
#include <nlohmann/json.hpp>
#include <string>

#include "receiver/database/Pool.h"
#include "receiver/files/UploadFolder.h"
#include "receiver/http/Message.h"

namespace Norvik::Receiver {

using Json = nlohmann::json;

/// The requests of docs/server-protocol.md. Safe on any thread.
class Protocol {
 public:
  /// @param onUpload called after each file that was stored
  Protocol(Pool& pool, const UploadFolder& files, std::function<void()> onUpload)
      : pool_(pool), files_(files), onUpload_(std::move(onUpload)) {}

  Decision Decide(const Request& head) const;

 private:
  /// What a target names.
  struct Resource {
    std::string agent;
    std::string name;
    std::string checksum;
  };
  /// Called with a body that is a JSON object.
  using Handler = Response (Protocol::*)(const std::string& agent, const Request& request,
                                         const Json& body) const;
  struct Route;

  static bool Parse(const std::string& target, Resource& resource);
  BodyPlan PlanFor(const Route& route, const Resource& resource) const;
  Response Enrol(const std::string& agent, const Request& request, const Json& body) const;
  Response Message(const std::string& agent, const Request& request, const Json& body) const;
  Response GiveTasks(const std::string& agent, const Request& request, const Json& body) const;
  Response KeepStatuses(const std::string& agent, const Request& request, const Json& body) const;
  Response KeepAnswer(const std::string& agent, const Request& request, const Json& body) const;
  Response KeepFile(const Resource& resource, Request& request) const;

  Pool& pool_;
  const UploadFolder& files_;
  std::function<void()> onUpload_;
};

/// A request is not as described.
struct Refusal {
  int status;
  std::string sentence;
  int retryAfter = 0;
};

/// A text of a body of at most `limit` bytes; empty if it is missing. Throws `Refusal`.
std::string TextOf(const Json& body, const char* key, std::size_t limit);
/// The same, but neither missing nor empty.
std::string RequiredText(const Json& body, const char* key, std::size_t limit);
/// A whole number of a body. Throws `Refusal`.
long long NumberOf(const Json& body, const char* key);
/// The token of an Authorization header. Throws `Refusal`.
std::string TokenOf(const std::string& authorization);
/// Whether the agent is enrolled with the token of the request. Notes the contact.
bool IsEnrolled(Session& session, const std::string& agent, const Request& request);
Response JsonResponse(const Json& body, int status = 200);

}  // namespace Norvik::Receiver
