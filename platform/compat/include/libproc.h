#pragma once

// The calls of macOS for processes that are used here, answered from /proc or from a recording.

#include <stdint.h>

#define PROC_ALL_PIDS 1
#define PROC_PIDPATHINFO_MAXSIZE 4096
#define RUSAGE_INFO_V2 2

typedef void* rusage_info_t;

struct rusage_info_v2 {
  uint8_t ri_uuid[16];
  uint64_t ri_user_time;
  uint64_t ri_system_time;
  uint64_t ri_pkg_idle_wkups;
  uint64_t ri_interrupt_wkups;
  uint64_t ri_pageins;
  uint64_t ri_wired_size;
  uint64_t ri_resident_size;
  uint64_t ri_phys_footprint;
  uint64_t ri_proc_start_abstime;
  uint64_t ri_proc_exit_abstime;
  uint64_t ri_child_user_time;
  uint64_t ri_child_system_time;
  uint64_t ri_child_pkg_idle_wkups;
  uint64_t ri_child_interrupt_wkups;
  uint64_t ri_child_pageins;
  uint64_t ri_child_elapsed_abstime;
  uint64_t ri_diskio_bytesread;
  uint64_t ri_diskio_byteswritten;
};

/// Bytes that were stored or, without a buffer, that are needed.
int proc_listpids(uint32_t type, uint32_t typeinfo, void* buffer, int buffersize);
/// Both give the length of the text, 0 if it is not known.
int proc_name(int pid, void* buffer, uint32_t buffersize);
int proc_pidpath(int pid, void* buffer, uint32_t buffersize);
/// Only the footprint is filled in; everything else is zero.
int proc_pid_rusage(int pid, int flavor, rusage_info_t* buffer);
