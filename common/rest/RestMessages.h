#pragma once

#include <wx/string.h>

#include <boost/optional.hpp>
#include <boost/property_tree/ptree_fwd.hpp>
#include <cstdint>
#include <string>

#include "common/Api.h"
#include "json/JSON.h"

namespace Norvik::Common {

/// A request to the management server. The type of the request decides where it is sent.
class NORVIK_COMMON_API IRestRequest {
 public:
  virtual ~IRestRequest();
  /// The body of the request, a JSON object.
  virtual operator json::JSON() const = 0;

 protected:
  IRestRequest() = default;
  IRestRequest(const IRestRequest&) = default;
  IRestRequest& operator=(const IRestRequest&) = default;
};

/// The answer of the management server.
class NORVIK_COMMON_API IRestResponse {
 public:
  virtual ~IRestResponse();
  /// Sets the members from the body of the answer; a missing key sets the default. Throws a
  /// subclass of `std::exception` for a value of another type, and leaves the members unchanged.
  virtual void Assign(const boost::property_tree::ptree& body) = 0;

 protected:
  IRestResponse() = default;
  IRestResponse(const IRestResponse&) = default;
  IRestResponse& operator=(const IRestResponse&) = default;
};

/// A question of this module to its counterpart on the server. The two codes say what it is about.
/// The body has the agent's identifier only if it is set.
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

/// The server's answer about the survey: the JSON text in `ProcessMessageResponse::message`.
struct NORVIK_COMMON_API SurveyResponseInfo : IRestResponse {
  SurveyResponseInfo() = default;
  /// Throws what `Assign` throws.
  explicit SurveyResponseInfo(const boost::property_tree::ptree& body);
  void Assign(const boost::property_tree::ptree& body) override;
  explicit operator json::JSON() const;

  bool available = false;  ///< there is a survey to show
  std::string url;         ///< of the survey's page
};

NORVIK_COMMON_API bool operator==(const SurveyResponseInfo& left, const SurveyResponseInfo& right);
NORVIK_COMMON_API bool operator!=(const SurveyResponseInfo& left, const SurveyResponseInfo& right);

}  // namespace Norvik::Common
