#include "module/Actions/SoftwareChangesChecker.h"

#include <stdexcept>
#include <utility>

namespace Norvik::KOB {

namespace {

[[noreturn]] void Refuse() { throw std::runtime_error("not implemented yet"); }

}  // namespace

SoftwareChangesChecker::SoftwareChangesChecker(
    std::weak_ptr<Common::ModuleDependencies> dependencies, const Common::ActionFactory& factory,
    Common::HandlerMap& /*handlers*/)
    : ActionPerformerBase(Common::PRODUCT_KOB, factory, std::move(dependencies)),
      factory_(factory) {}

Common::ActionResponse SoftwareChangesChecker::StartRegistryCheck(Common::ActionParameters&) {
  Refuse();
}
void SoftwareChangesChecker::WaitForKeyChange() { Refuse(); }
void SoftwareChangesChecker::CloseHandlers() { Refuse(); }
void SoftwareChangesChecker::OpenUserKeys() { Refuse(); }
void SoftwareChangesChecker::OpenSystemKeys() { Refuse(); }
void SoftwareChangesChecker::CreateEventHandlers() { Refuse(); }
void SoftwareChangesChecker::CreateLastEventHandler() { Refuse(); }

}  // namespace Norvik::KOB
