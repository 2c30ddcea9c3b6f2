#include <mach/mach.h>

namespace {

/// The task of a process, searched among all tasks of the machine, for where `task_for_pid` is
/// refused. 0 if no task has the number; the host's own port if the tasks may not be listed.
/// Nothing uses it at present.
[[maybe_unused]] mach_port_t task_for_pid_workaround(int pid) {
  const host_t host = mach_host_self();
  processor_set_t set = MACH_PORT_NULL;
  processor_set_default(host, &set);
  processor_set_t privilegedSet = MACH_PORT_NULL;
  if (host_processor_set_priv(host, set, &privilegedSet) != KERN_SUCCESS) return host;

  task_array_t tasks = nullptr;
  mach_msg_type_number_t count = 0;
  if (processor_set_tasks(privilegedSet, &tasks, &count) != KERN_SUCCESS) return host;
  for (mach_msg_type_number_t i = 0; i < count; ++i) {
    int found = 0;
    if (pid_for_task(tasks[i], &found) == KERN_SUCCESS && found == pid) return tasks[i];
  }
  return 0;
}

}  // namespace
