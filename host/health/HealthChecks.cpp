#include "host/health/HealthChecks.h"

#include <iterator>

#include "host/health/Checks.h"

namespace Norvik::Host {

namespace {

constexpr char ALL[] = "*";
constexpr char NONE[] = "";

constexpr HealthCheck CHECKS[] = {
    {"data-folder", "The data folder is there and an agent has used it", START_AGENT, ALL,
     FindDataFolder},
    {"data-folder-rights", "Only the agent's user can enter the data folder",
     "give the folder to the agent's user and set its mode to 0700", NONE, FindDataFolderRights},
    {"data-folder-writable", "The agent can write to its data folder",
     "mount the volume for writing, or give the folder to the agent's user", ALL,
     FindDataFolderWritable},
    {"disk-space", "At least 1 GB and 5 % of the volume are free", "free space on the volume", ALL,
     FindDiskSpace},
    {"database-room", "The database has room for another file inventory",
     "free space on the volume; without it file inventories fail", NONE, FindDatabaseRoom},
    {"leftovers", "No temporary files of killed runs are left",
     "restart the service, which removes them", NONE, FindLeftovers},
    {"log", "The log can be written", "give the file to the agent's user, mode 0600", NONE,
     FindLog},
    {"log-rotation", "The log is rotated at 5 MiB",
     "check that the folder of the log can be written, then restart the service", NONE,
     FindLogRotation},

    {"configuration", "The configuration is valid",
     "correct the key that is named and store the file with norvik-agent configure FILE", ALL,
     FindConfiguration},
    {"configuration-warnings", "Nothing in the configuration will surprise",
     "correct the entries; norvik-agent configure FILE --check shows the same", NONE,
     FindConfigurationWarnings},
    {"managed-preferences", "The managed preferences are valid", "correct the profile in the MDM",
     ALL, FindManagedPreferences},
    {"schedules", "Something starts inventories regularly",
     "set inventorySchedule, or pendingTasksSchedule and a server, in the configuration", ALL,
     FindSchedules},
    {"own-keys", "The pair of keys of this machine is whole and private",
     "set the mode of the folder to 0700 and of agent.key to 0600, or remove both files of a "
     "wrong pair: the next document makes a new one",
     NONE, FindOwnKeys},
    {"server-key", "The key of the server is there, if a server is configured",
     "put the server's public key into keys/server.pub of the data folder", ALL, FindServerKey},

    {"module", "The module can be loaded", "install the agent again", ALL, FindModule},
    {"module-version", "Program, library and module are of one version and installation",
     "install the agent again, or leave out --module", ALL, FindModuleVersion},

    {"database", "The database can be read and is sound",
     "restart the service twice: it puts a damaged database aside and makes a new one", ALL,
     FindDatabase},
    {"database-schema", "This program knows the schema of the database",
     "install the newest version of the agent", ALL, FindDatabaseSchema},
    {"corrupt-databases", "No damaged database was put aside",
     "check the disk, and remove the files when nobody needs them", NONE, FindCorruptDatabases},
    {"last-document", "The last machine inventory has made its document in time",
     "run norvik-agent inventory and read the log", ALL, FindLastDocument},
    {"due-actions", "No action of a schedule is overdue",
     "start the service; the log says why an action has not run", ALL, FindDueActions},
    {"outbox", "No file waits in the outbox for more than a day",
     "see the checks of the server and of its key", NONE, FindOutbox},
    {"last-delivery", "The document of the last machine inventory is sent",
     "see the checks of the server and of its key", NONE, FindLastDelivery},
    {"waiting-states", "No state or answer of a task waits for more than a day",
     "see the checks of the server", NONE, FindWaitingStates},

    {"server-name", "The name of the server is resolved",
     "correct server.address in the configuration, or the machine's name servers", NONE,
     FindServerName},
    {"server-connection", "The server accepts connections",
     "check the network, the firewall and server.port in the configuration", NONE,
     FindServerConnection},
    {"server-trust", "The certificate of the server is trusted and belongs to its address",
     "set server.caFile to the authority of the server, or renew its certificate", NONE,
     FindServerTrust},
    {"certificate-days", "The certificate of the server is valid for two more weeks",
     "renew the certificate of the server", NONE, FindCertificateDays},
    {"server-answer", "The server answers requests",
     "read the log of the server, and check that server.address is a management server", NONE,
     FindServerAnswer},
    {"enrolment", "The server has enrolled this agent and accepts its token",
     "start the service, and have the server accept this agent", NONE, FindEnrolment},
    {"clock-skew", "The clock differs by at most a minute from the server's",
     "set the clock of the machine by a time server", NONE, FindClockSkew},

    {"service-installed", "The description of the service is installed",
     "install the agent, or copy the description to its place", NONE, FindServiceInstalled},
    {"service-loaded", "The system has loaded the service",
     "on macOS launchctl bootstrap system /Library/LaunchDaemons/com.norvik.agent.plist, "
     "elsewhere systemctl enable --now norvik-agent",
     NONE, FindServiceLoaded},
    {"service-answers", "The service runs and answers at its socket",
     "start the service, or name its socket by --socket; the log says why it ended", ALL,
     FindServiceAnswers},
    {"socket-rights", "Every user can connect to the socket, and none can replace it",
     "restart the service; on a folder that everybody can write to use another --socket", NONE,
     FindSocketRights},
    {"user-processes", "Users' processes are connected to the service",
     "log on, or start norvik-agent user; without it users see no message", NONE,
     FindUserProcesses},
    {"user-agent", "The description of the users' processes is installed",
     "install the agent, or copy the description to its place", NONE, FindUserAgent},

    {"full-disk-access", "The agent may read protected files",
     "allow it in System Settings, Privacy & Security, or by a profile of the MDM", NONE,
     FindFullDiskAccess},
    {"location", "The agent may know where the machine is",
     "allow it in System Settings, Privacy & Security, Location Services", "location",
     FindLocationPermission},
    {"apple-events", "The agent may log out, restart and shut down",
     "allow it in System Settings, Privacy & Security, or by a profile of the MDM", NONE,
     FindAppleEvents},

    {"tools", "The tools that the collectors run are in PATH",
     "restore the tools, or correct PATH in the description of the service",
     "bios, boards, cdrom, device, disk, displays, drivers, keyboard, networkAdapter, os, "
     "processorSlot, sharedResources, software, unitMappings, videoCards",
     FindTools},
    {"machine-files", "The files that the collectors read are there and readable",
     "run the agent as root",
     "bios, boards, disk, memorySlot, networkAdapter, portConnectors, printer, processorSlot, "
     "service, setup",
     FindMachineFiles},
    {"fixed-files", "The tools of the collectors can write their files in /tmp",
     "remove what is in the way, and let everybody write to /tmp, mode 1777",
     "cdrom, sharedResources", FindFixedFiles},

    {"host-name", "The machine has a name", "give the machine a name", "device", FindHostName},
    {"clock", "The clock of the machine is plausible",
     "set the clock of the machine by a time server", NONE, FindClock},
    {"time-zone", "The machine has a time zone", "set the time zone of the machine", NONE,
     FindTimeZone},
    {"descriptors", "A process may open 1,024 descriptors",
     "raise the limit in the description of the service", NONE, FindDescriptorLimit},
};

}  // namespace

const std::vector<HealthCheck>& HealthChecks() {
  static const std::vector<HealthCheck> checks(std::begin(CHECKS), std::end(CHECKS));
  return checks;
}

}  // namespace Norvik::Host
