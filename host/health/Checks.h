#pragma once

#include "host/health/Examined.h"
#include "host/health/Finding.h"

// The functions of the table in HealthChecks.cpp, which says what each finds.

namespace Norvik::Host {

// DataFolderChecks.cpp
Finding FindDataFolder(const Examined& examined);
Finding FindDataFolderRights(const Examined& examined);
Finding FindDataFolderWritable(const Examined& examined);
Finding FindDiskSpace(const Examined& examined);
Finding FindDatabaseRoom(const Examined& examined);
Finding FindLeftovers(const Examined& examined);
Finding FindCorruptDatabases(const Examined& examined);
Finding FindLog(const Examined& examined);
Finding FindLogRotation(const Examined& examined);

// ConfigurationChecks.cpp
Finding FindConfiguration(const Examined& examined);
Finding FindConfigurationWarnings(const Examined& examined);
Finding FindManagedPreferences(const Examined& examined);
Finding FindSchedules(const Examined& examined);
Finding FindOwnKeys(const Examined& examined);
Finding FindServerKey(const Examined& examined);

// ModuleChecks.cpp
Finding FindModule(const Examined& examined);
Finding FindModuleVersion(const Examined& examined);

// DatabaseChecks.cpp
Finding FindDatabase(const Examined& examined);
Finding FindDatabaseSchema(const Examined& examined);
Finding FindLastDocument(const Examined& examined);
Finding FindDueActions(const Examined& examined);

// DeliveryChecks.cpp
Finding FindOutbox(const Examined& examined);
Finding FindLastDelivery(const Examined& examined);
Finding FindWaitingStates(const Examined& examined);

// ServerChecks.cpp
Finding FindServerName(const Examined& examined);
Finding FindServerConnection(const Examined& examined);
Finding FindServerTrust(const Examined& examined);
Finding FindCertificateDays(const Examined& examined);
Finding FindServerAnswer(const Examined& examined);
Finding FindEnrolment(const Examined& examined);
Finding FindClockSkew(const Examined& examined);

// ServiceChecks.cpp
Finding FindServiceInstalled(const Examined& examined);
Finding FindServiceLoaded(const Examined& examined);
Finding FindServiceAnswers(const Examined& examined);
Finding FindSocketRights(const Examined& examined);
Finding FindUserProcesses(const Examined& examined);
Finding FindUserAgent(const Examined& examined);

// PermissionChecks.cpp
Finding FindFullDiskAccess(const Examined& examined);
Finding FindLocationPermission(const Examined& examined);
Finding FindAppleEvents(const Examined& examined);

// CollectorChecks.cpp
Finding FindTools(const Examined& examined);
Finding FindMachineFiles(const Examined& examined);
Finding FindFixedFiles(const Examined& examined);

// SystemChecks.cpp
Finding FindHostName(const Examined& examined);
Finding FindClock(const Examined& examined);
Finding FindTimeZone(const Examined& examined);
Finding FindDescriptorLimit(const Examined& examined);

}  // namespace Norvik::Host
