#pragma once

// The call of macOS for the size of the memory.

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

#define CTL_HW 6
#define HW_MEMSIZE 24

int sysctl(int* name, unsigned int nameLength, void* oldValue, size_t* oldLength, void* newValue,
           size_t newLength);

#ifdef __cplusplus
}
#endif
