#include "receiver/http/Message.h"

#include <nlohmann/json.hpp>

namespace Norvik::Receiver {

Response ErrorResponse(int status, const std::string& sentence, int retryAfter) {
  return {status, nlohmann::json{{"error", sentence}}.dump(), retryAfter};
}

}  // namespace Norvik::Receiver
