#include "module/Actions/SoftwareChangesChecker.h"

#include <stdexcept>
#include <utility>

namespace Norvik::KOB {

namespace {

[[noreturn]] void ThrowNotImplemented() { throw std::runtime_error("not implemented yet"); }

}  // namespace

SoftwareChangesChecker::SoftwareChangesChecker(
    std::weak_ptr<Common::ModuleDependencies> dependencies, const Common::ActionFactory& factory,
    Common::HandlerMap& /*handlers*/)
    : ActionPerformerBase(Common::PRODUCT_KOB, factory, std::move(dependencies)),
      factory_(factory) {}

Common::ActionResponse SoftwareChangesChecker::StartRegistryCheck(Common::ActionParameters&) {
  ThrowNotImplemented();
}
void SoftwareChangesChecker::WaitForKeyChange() { ThrowNotImplemented(); }
void SoftwareChangesChecker::CloseHandlers() { ThrowNotImplemented(); }
void SoftwareChangesChecker::OpenUserKeys() { ThrowNotImplemented(); }
void SoftwareChangesChecker::OpenSystemKeys() { ThrowNotImplemented(); }
void SoftwareChangesChecker::CreateEventHandlers() { ThrowNotImplemented(); }
void SoftwareChangesChecker::CreateLastEventHandler() { ThrowNotImplemented(); }

}  // namespace Norvik::KOB
