#pragma once

#include <wx/string.h>

#include <boost/optional.hpp>
#include <boost/property_tree/ptree_fwd.hpp>
#include <cstdint>
#include <string>

#include "common/Api.h"
#include "json/JSON.h"

namespace Norvik::Common {

/// A request to the management server.
class NORVIK_COMMON_API IRestRequest {
 public:
  virtual ~IRestRequest();
  /// The body of the request.
  virtual operator json::JSON() const = 0;

 protected:
  IRestRequest() = default;
  IRestRequest(const IRestRequest&) = default;
  IRestRequest& operator=(const IRestRequest&) = default;
};

/// The server's answer.
class NORVIK_COMMON_API IRestResponse {
 public:
  virtual ~IRestResponse();
  /// Takes the fields from the answer's body; a missing one takes its default. A value of
  /// another type raises a subclass of `std::exception` and leaves the fields as they were.
  virtual void Assign(const boost::property_tree::ptree& body) = 0;

 protected:
  IRestResponse() = default;
  IRestResponse(const IRestResponse&) = default;
  IRestResponse& operator=(const IRestResponse&) = default;
};

/// A question of this agent's module to its counterpart on the server, which knows by the codes
/// what it is about. Without an identifier the body has none.
struct NORVIK_COMMON_API ProcessMessageRequest : IRestRequest {
  operator json::JSON() const override;

  boost::optional<std::string> agentIdentifier;
  std::uint32_t code = 0;
  std::uint32_t subcode = 0;
  wxString message;
};

/// The answer to a `ProcessMessageRequest`.
struct NORVIK_COMMON_API ProcessMessageResponse : IRestResponse {
  void Assign(const boost::property_tree::ptree& body) override;

  std::uint32_t result = 0;  ///< 0: success
  wxString message;
};

/// The server's answer about the survey, held as JSON in `ProcessMessageResponse::message`.
struct NORVIK_COMMON_API SurveyResponseInfo : IRestResponse {
  SurveyResponseInfo() = default;
  explicit SurveyResponseInfo(const boost::property_tree::ptree& body);
  void Assign(const boost::property_tree::ptree& body) override;
  explicit operator json::JSON() const;

  bool available = false;  ///< there is a survey to show
  std::string url;
};

NORVIK_COMMON_API bool operator==(const SurveyResponseInfo& left, const SurveyResponseInfo& right);
NORVIK_COMMON_API bool operator!=(const SurveyResponseInfo& left, const SurveyResponseInfo& right);

}  // namespace Norvik::Common
