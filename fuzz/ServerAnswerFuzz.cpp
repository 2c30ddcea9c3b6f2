#include "Fuzz.h"
#include "common/rest/PendingTasks.h"
#include "host/server/AnswerBody.h"

/// Parses the input as the answer of a server to each of the requests. An invalid answer throws
/// what the server connection catches.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace Norvik;
  Common::PendingTasksResponse tasks;
  Common::ProcessMessageResponse message;
  Common::SurveyResponseInfo survey;
  for (Common::IRestResponse* response :
       std::initializer_list<Common::IRestResponse*>{&tasks, &message, &survey}) {
    try {
      response->Assign(Host::ParseAnswerBody(std::string(data, data + size)));
    } catch (const std::exception&) {
    }
  }
  return 0;
}
