#pragma once

// The calls of macOS for values of the kernel: answered from a recording. Without one only the size
// of the memory is known.

#include <stddef.h>

#define CTL_HW 6
#define HW_MEMSIZE 24

int sysctl(int* name, unsigned int nameLength, void* oldValue, size_t* oldLength, void* newValue,
           size_t newLength);
int sysctlbyname(const char* name, void* oldValue, size_t* oldLength, void* newValue,
                 size_t newLength);
