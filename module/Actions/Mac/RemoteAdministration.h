#pragma once

#include <memory>
#include <string>

#include "common/action/ActionPerformerBase.h"

namespace Norvik::KOB {

/// Answer to an operation that this system does not have.
extern const std::string NOT_SUPPORTED_OPERATION;

/// Answers an operator's requests to this machine. A handler reads named parameters, does one job,
/// and says in the response's text why it failed.
class RemoteAdministration final : public Common::ActionPerformerBase {
 public:
  RemoteAdministration(std::weak_ptr<Common::ModuleDependencies> dependencies,
                       const Common::ActionFactory& factory, Common::HandlerMap& handlers);

  /// Refused like the other registry operations. Deliberately without an action code.
  Common::ActionResponse CreateRegistryValue(Common::ActionParameters& parameters);

 private:
  struct Operation;
  static const Operation OPERATIONS[];

  Common::ActionResponse RefuseOperation(Common::ActionParameters& parameters);
  Common::ActionResponse AnswerUnavailable(const Operation& operation,
                                           Common::ActionParameters& parameters);
  Common::ActionResponse PauseService(Common::ActionParameters& parameters);
  Common::ActionResponse ContinueService(Common::ActionParameters& parameters);
};

}  // namespace Norvik::KOB
