#include "receiver/protocol/Protocol.h"

#include <algorithm>
#include <utility>

#include "common/log/Logger.h"
#include "json/BoundedReader.h"
#include "receiver/protocol/Credentials.h"

namespace Norvik::Receiver {

namespace {

constexpr std::uint64_t MEBIBYTE = 1 << 20;
constexpr std::size_t MAX_NESTING = 32;
constexpr int RETRY_SECONDS = 30;
constexpr char ROOT[] = "/norvik/v1/agents/";

/// Runs an action; what it throws becomes an answer of the protocol.
template <class Action>
Response Answering(Action action) {
  try {
    return action();
  } catch (const Refusal& refusal) {
    return ErrorResponse(refusal.status, refusal.sentence, refusal.retryAfter);
  } catch (const std::exception& failure) {
    NORVIK_ERROR(std::string("A request failed: ") + failure.what());
    return ErrorResponse(503, "The server cannot store anything now.", RETRY_SECONDS);
  }
}

bool IsHexadecimal(const std::string& text) {
  return std::all_of(text.begin(), text.end(),
                     [](char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'); });
}

bool IsUuid(const std::string& text) {
  if (text.size() != 36) return false;
  std::string digits = text;
  for (const std::size_t dash : {23U, 18U, 13U, 8U}) {
    if (text[dash] != '-') return false;
    digits.erase(dash, 1);
  }
  return IsHexadecimal(digits);
}

Json ObjectOf(const std::string& body) {
  try {
    Json value = json::ReadBounded<Json>(body, MAX_NESTING);
    if (value.is_object()) return value;
  } catch (const json::ReadError&) {
    throw Refusal{400, "The body is no JSON, or exceeds a limit."};
  }
  throw Refusal{400, "The body is no JSON object."};
}

[[noreturn]] void Refuse(const char* key, const std::string& what) {
  throw Refusal{400, "The key " + std::string(key) + " of the body is " + what + "."};
}

}  // namespace

struct Protocol::Route {
  const char* method;
  const char* resource;
  std::uint64_t limit;
  Handler handler;  ///< null: of a file
};

bool Protocol::Parse(const std::string& target, Resource& resource) {
  if (target.compare(0, sizeof(ROOT) - 1, ROOT) != 0) return false;
  std::string rest = target.substr(sizeof(ROOT) - 1);
  std::string* const parts[] = {&resource.agent, &resource.name, &resource.checksum};
  for (std::string* part : parts) {
    const auto slash = rest.find('/');
    *part = rest.substr(0, slash);
    if (part->empty()) return false;
    if (slash == std::string::npos) {
      return IsUuid(resource.agent) && IsHexadecimal(resource.checksum) &&
             (resource.checksum.size() == 64) == (resource.name == "files") &&
             (resource.checksum.empty() || resource.checksum.size() == 64);
    }
    rest.erase(0, slash + 1);
  }
  return false;
}

Decision Protocol::Decide(const Request& head) const {
  static constexpr Route ROUTES[] = {
      {"PUT", "", MEBIBYTE, &Protocol::Enrol},
      {"POST", "messages", MEBIBYTE, &Protocol::Message},
      {"POST", "tasks", MEBIBYTE, &Protocol::GiveTasks},
      {"POST", "statuses", MEBIBYTE, &Protocol::KeepStatuses},
      {"POST", "answers", 9 * MEBIBYTE, &Protocol::KeepAnswer},
      {"PUT", "files", 2048 * MEBIBYTE, nullptr},
  };
  Decision decision;
  decision.response = Answering([&] {
    Resource resource;
    const bool isResource = Parse(head.target, resource);
    for (const Route& route : ROUTES) {
      if (!isResource || head.method != route.method || resource.name != route.resource) continue;
      TokenOf(head.authorization);
      if (!resource.name.empty()) {
        const bool isEnrolled =
            pool_.With([&](Session& session) { return IsEnrolled(session, resource.agent, head); });
        if (!isEnrolled) throw Refusal{401, "No agent with this token is enrolled."};
      }
      decision.plan = PlanFor(route, resource);
      return Response();
    }
    throw Refusal{404, "There is no such resource."};
  });
  return decision;
}

BodyPlan Protocol::PlanFor(const Route& route, const Resource& resource) const {
  BodyPlan plan;
  plan.limit = route.limit;
  if (!route.handler) {
    plan.file = files_.PathOf(resource.agent, resource.checksum);
    plan.handle = [this, resource](Request& request) {
      return Answering([&] { return KeepFile(resource, request); });
    };
    return plan;
  }
  plan.handle = [this, handler = route.handler, agent = resource.agent](Request& request) {
    return Answering([&] { return (this->*handler)(agent, request, ObjectOf(request.body)); });
  };
  return plan;
}

Response Protocol::Message(const std::string&, const Request&, const Json& body) const {
  // This server has no surveys: its answer to the question for one (1003, 1) is empty.
  const bool isKnown = NumberOf(body, "code") == 1003 && NumberOf(body, "subcode") == 1;
  return JsonResponse({{"result", isKnown ? 0 : 1}, {"message", isKnown ? "{}" : ""}});
}

std::string TextOf(const Json& body, const char* key, std::size_t limit) {
  const auto found = body.find(key);
  if (found == body.end()) return {};
  if (!found->is_string()) Refuse(key, "no text");
  const auto& text = found->get_ref<const std::string&>();
  if (text.size() > limit) Refuse(key, "longer than " + std::to_string(limit) + " bytes");
  if (text.find('\0') != std::string::npos) Refuse(key, "a text with the character NUL");
  return text;
}

std::string RequiredText(const Json& body, const char* key, std::size_t limit) {
  std::string text = TextOf(body, key, limit);
  if (text.empty()) Refuse(key, "missing");
  return text;
}

long long NumberOf(const Json& body, const char* key) {
  const auto found = body.find(key);
  if (found == body.end() || !found->is_number_integer()) Refuse(key, "no whole number");
  return found->get<long long>();
}

std::string TokenOf(const std::string& authorization) {
  constexpr char SCHEME[] = "Bearer ";
  std::string token =
      authorization.compare(0, 7, SCHEME) == 0 ? authorization.substr(7) : std::string();
  const bool isVisible =
      std::all_of(token.begin(), token.end(), [](char c) { return c > ' ' && c <= '~'; });
  if (token.size() < 16 || token.size() > 512 || !isVisible) {
    throw Refusal{401, "The request has no token of 16 to 512 visible characters."};
  }
  return token;
}

Response JsonResponse(const Json& body, int status) { return {status, body.dump(), 0}; }

}  // namespace Norvik::Receiver
