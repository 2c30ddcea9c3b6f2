#pragma once

// The codes of all actions. The numbers are shared with the management server and never change: a
// new action takes a new number, and a number that is free again is not reused. Each number is
// in one list only; the enumerations, and the names that logs show, are made from the lists.

/// Codes of the host contract: X(enumerator, code).
#define NORVIK_COMMON_ACTION_CODES(X)        \
  X(COMMON_ACTION_NEW_CONFIGURATION, 32011)  \
  X(COMMON_ACTION_INIT, 32012)               \
  X(COMMON_ACTION_USER_MESSAGE, 32016)       \
  X(COMMON_ACTION_START_CHANGE_CHECK, 32019) \
  X(COMMON_ACTION_HARDWARE_CHANGES, 32022)   \
  X(COMMON_ACTION_SOFTWARE_CHANGES, 32023)   \
  X(COMMON_ACTION_SURVEY_DIALOG, 32025)      \
  X(COMMON_ACTION_GET_PENDING_TASKS, 32027)

/// Codes of the inventory and remote-administration module: X(enumerator, code).
#define NORVIK_KOB_ACTION_CODES(X)                     \
  X(ACTION_DELETE_FILE, 1000)                          \
  X(ACTION_DELETE_EXTENSION, 1001)                     \
  X(ACTION_LIST_FILES, 1002)                           \
  X(ACTION_LIST_FOLDERS, 1003)                         \
  X(ACTION_LIST_SERVICES, 1006)                        \
  X(ACTION_START_SERVICE, 1007)                        \
  X(ACTION_PAUSE_SERVICE, 1008)                        \
  X(ACTION_CONTINUE_SERVICE, 1009)                     \
  X(ACTION_STOP_SERVICE, 1010)                         \
  X(ACTION_LIST_PROCESSES, 1011)                       \
  X(ACTION_KILL_PROCESS, 1012)                         \
  X(ACTION_RUN_PROCESS, 1013)                          \
  X(ACTION_CREATE_REGISTRY_KEY, 1015)                  \
  X(ACTION_SET_REGISTRY_VALUE, 1016)                   \
  X(ACTION_DELETE_REGISTRY_KEY, 1017)                  \
  X(ACTION_DELETE_REGISTRY_VALUE, 1018)                \
  X(ACTION_LIST_REGISTRY_KEYS, 1019)                   \
  X(ACTION_LIST_REGISTRY_VALUES, 1020)                 \
  X(ACTION_RENAME_REGISTRY_KEY, 1021)                  \
  X(ACTION_RENAME_REGISTRY_VALUE, 1022)                \
  X(ACTION_CLOSE_SESSION, 1023)                        \
  X(ACTION_LIST_SESSIONS, 1024)                        \
  X(ACTION_SHUTDOWN, 1025)                             \
  X(ACTION_RESTART, 1026)                              \
  X(ACTION_SHOW_MESSAGE, 1027)                         \
  X(ACTION_LIST_NETWORK_CONNECTIONS, 1029)             \
  X(ACTION_REMOVE_PRINTER, 1030)                       \
  X(ACTION_REMOVE_SHARED_RESOURCES, 1031)              \
  X(ACTION_SYNCHRONIZE_TIME, 1032)                     \
  X(ACTION_INCREMENTAL_INVENTORY, 1036)                \
  X(ACTION_FILE_INVENTORY_ON_DEMAND, 1037)             \
  X(ACTION_FILE_INVENTORY_INCREMENTAL_ON_DEMAND, 1038) \
  X(ACTION_LIST_MAPPED_DRIVES, 1039)                   \
  X(ACTION_FILE_INVENTORY_INCREMENTAL, 1041)           \
  X(ACTION_RESTART_SERVICE, 1045)                      \
  X(ACTION_GET_PENDING_TASKS, 1046)                    \
  X(ACTION_FILE_INVENTORY, 1047)                       \
  X(ACTION_FILE_INVENTORY_INIT, 1060)                  \
  X(ACTION_UNINSTALL_SOFTWARE, 1062)                   \
  X(ACTION_VALIDATE_NETWORK_DRIVES_KEY, 1065)          \
  X(ACTION_TRUNCATE_NETWORK_DRIVES, 1066)              \
  X(ACTION_USER_NETWORK_DRIVES_LIST, 1067)             \
  X(ACTION_SAVE_OPERATING_SYSTEM_TYPE, 1068)           \
  X(ACTION_VALIDATE_SURVEY_COMPLETION, 1069)           \
  X(ACTION_UNINSTALL_AGENT_WITH_CHECK, 1070)           \
  X(ACTION_TOTAL_INVENTORY, 1071)                      \
  X(ACTION_SCHEDULE_TOTAL_INVENTORY, 1072)             \
  X(ACTION_UNINSTALL_AGENT_WITHOUT_CHECK, 1073)        \
  X(ACTION_NETWORK_DRIVES, 32001)                      \
  X(ACTION_UPDATE_CONFIGURATION, 32004)

#define NORVIK_ACTION_ENUMERATOR(name, code) name = code,

namespace Norvik::Common {

enum CommonActionCodes : unsigned int { NORVIK_COMMON_ACTION_CODES(NORVIK_ACTION_ENUMERATOR) };

/// An action code and the name of its enumerator.
struct ActionName {
  unsigned int code;
  const char* name;
};

#define NORVIK_ACTION_NAME(name, code) ActionName{code, #name},
/// All codes of both lists. The order has no meaning.
inline constexpr ActionName ACTION_NAMES[] = {NORVIK_COMMON_ACTION_CODES(NORVIK_ACTION_NAME)
                                                  NORVIK_KOB_ACTION_CODES(NORVIK_ACTION_NAME)};
#undef NORVIK_ACTION_NAME

}  // namespace Norvik::Common
