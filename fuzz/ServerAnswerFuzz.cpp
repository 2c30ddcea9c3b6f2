#include <cstddef>
#include <cstdint>
#include <exception>
#include <string>

#include "common/rest/PendingTasks.h"
#include "host/server/AnswerBody.h"

// Answers of a server, to each of the questions. One that is none raises what the road to the
// server catches.
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
      // The answer is left aside.
    }
  }
  return 0;
}
