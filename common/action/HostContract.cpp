// Destructors of the types that host and module pass to each other. They are defined here, in the
// library that both share, so that each type has one type information and one virtual table.

#include "common/action/ActionParameters.h"
#include "common/action/ActionResponse.h"
#include "common/action/IActionSystem.h"
#include "common/action/IModule.h"
#include "common/action/ModuleAction.h"
#include "common/configuration/CommunicationsInfo.h"
#include "common/configuration/ProductConfigurations.h"
#include "common/database/IDataBase.h"
#include "common/identification/IIdentificationSystem.h"
#include "common/ipc/ICommunicationIPC.h"
#include "common/rest/ICommunicationSystem.h"

namespace Norvik::Common {

ActionParameters::~ActionParameters() = default;
ActionResponse::~ActionResponse() = default;
ModuleAction::~ModuleAction() = default;

IModule::~IModule() = default;
IActionSystem::~IActionSystem() = default;
ICommunicationIPC::~ICommunicationIPC() = default;
ICommunicationSystem::~ICommunicationSystem() = default;
void ICommunicationSystem::ReportTaskStatuses(const std::vector<TaskResponseInfo>& statuses) {
  for (const TaskResponseInfo& status : statuses) ReportTaskStatus(status);
}
IDataBase::~IDataBase() = default;
IIdentificationSystem::~IIdentificationSystem() = default;
IRestRequest::~IRestRequest() = default;
IRestResponse::~IRestResponse() = default;

ConfigurationInfoBase::~ConfigurationInfoBase() = default;
GlyConfigurationInfo::~GlyConfigurationInfo() = default;
HoltConfigurationInfo::~HoltConfigurationInfo() = default;
SoftwareIdentificationInfo::~SoftwareIdentificationInfo() = default;
SoftwareUsageInfo::~SoftwareUsageInfo() = default;

}  // namespace Norvik::Common
