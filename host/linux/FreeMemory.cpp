#include "host/FreeMemory.h"

#include <link.h>
#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>

namespace Norvik::Host {

namespace {

/// Whether the loader has written into the code of a library.
bool HasRelocatedCode(const dl_phdr_info& library) {
  for (int i = 0; i < library.dlpi_phnum; ++i) {
    if (library.dlpi_phdr[i].p_type != PT_DYNAMIC) continue;
    const auto address = library.dlpi_addr + library.dlpi_phdr[i].p_vaddr;
    for (const auto* entry = reinterpret_cast<const ElfW(Dyn)*>(address); entry->d_tag != DT_NULL;
         ++entry) {
      if (entry->d_tag == DT_TEXTREL) return true;
      if (entry->d_tag == DT_FLAGS && (entry->d_un.d_val & DF_TEXTREL) != 0) return true;
    }
  }
  return false;
}

/// Gives back the code and constants of a library. What is used again comes from the system's cache
/// of the file. On macOS such pages do not count for the process.
int ReleaseCode(dl_phdr_info* library, std::size_t /*size*/, void* /*context*/) {
  if (HasRelocatedCode(*library)) return 0;
  const auto page = static_cast<std::uintptr_t>(::sysconf(_SC_PAGESIZE));
  for (int i = 0; i < library->dlpi_phnum; ++i) {
    const auto& segment = library->dlpi_phdr[i];
    if (segment.p_type != PT_LOAD || (segment.p_flags & PF_W) != 0) continue;
    const std::uintptr_t begin = (library->dlpi_addr + segment.p_vaddr) & ~(page - 1);
    const std::uintptr_t end = library->dlpi_addr + segment.p_vaddr + segment.p_memsz;
    ::madvise(reinterpret_cast<void*>(begin), end - begin, MADV_DONTNEED);
  }
  return 0;
}

}  // namespace

void ReleaseFreeMemory() {
  ::malloc_trim(0);
  ::dl_iterate_phdr(ReleaseCode, nullptr);
}

}  // namespace Norvik::Host
